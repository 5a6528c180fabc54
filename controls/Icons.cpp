#include "controls/Icons.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"
#include "core/Assert.h"

#include <QFile>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>

// The resource lies in a static library: whoever uses icons pulls it in.
static void LoadIconResource()
{
    Q_INIT_RESOURCE(icons);
}

namespace velmora::controls {
namespace {

/// At this size and below, strokes are a little wider.
constexpr double kSmallIcon = 12;
/// The check mark fills its box.
constexpr double kCheckIcon = 14;

struct Key {
    QString name;
    QRgb colour;
    double size;
    double scale;

    bool operator==(const Key&) const = default;
};

std::size_t qHash(const Key& key, std::size_t seed)
{
    return qHashMulti(seed, key.name, key.colour, key.size, key.scale);
}

QByteArray Source(const QString& name)
{
    static const bool loaded = (LoadIconResource(), true);
    static_cast<void>(loaded);
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QPixmap Render(const Key& key, const QColor& colour)
{
    QByteArray source = Source(key.name);
    source.replace("currentColor", colour.name(QColor::HexRgb).toLatin1());
    const char* stroke = key.name == QLatin1String("check") && key.size <= kCheckIcon ? "2.4"
                         : key.size <= kSmallIcon                                     ? "1.8"
                                                                                      : "1.5";
    source.replace("stroke-width=\"1.5\"", QByteArray("stroke-width=\"").append(stroke).append('"'));
    QSvgRenderer renderer(source);
    if (!renderer.isValid()) {
        return {};
    }
    const int pixels = static_cast<int>(std::lround(key.size * key.scale));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    if (colour.alpha() < 255) {
        // Once for the whole, so that overlapping strokes do not show.
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.fillRect(image.rect(), QColor(0, 0, 0, colour.alpha()));
    }
    painter.end();
    QPixmap pixmap = QPixmap::fromImage(std::move(image));
    pixmap.setDevicePixelRatio(key.scale);
    return pixmap;
}

} // namespace

QPixmap IconPixmap(const QString& name, const QColor& colour, double size, double scale)
{
    static QHash<Key, QPixmap> made;
    const Key key{name, colour.rgba(), size, scale};
    auto found = made.find(key);
    if (found == made.end()) {
        found = made.insert(key, Render(key, colour));
    }
    ASSERT(!found->isNull());
    return *found;
}

void DrawIcon(QPainter& painter, const QString& name, const QPointF& at, double size, const QColor& colour)
{
    const PixelGrid grid(painter);
    painter.drawPixmap(QPointF(grid.X(at.x()), grid.Y(at.y())), IconPixmap(name, colour, size, grid.Scale()));
}

QIcon MakeIcon(const QString& name, int size)
{
    QIcon icon;
    for (const double scale : {1.0, 1.5, 2.0}) {
        icon.addPixmap(IconPixmap(name, theme::Text, size, scale), QIcon::Normal);
        icon.addPixmap(IconPixmap(name, theme::Text3, size, scale), QIcon::Disabled);
    }
    return icon;
}

QIcon ProgramIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        icon.addPixmap(IconPixmap(QStringLiteral("velmora"), theme::Text, size, 1));
    }
    return icon;
}

} // namespace velmora::controls
