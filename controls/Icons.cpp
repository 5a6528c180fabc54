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
    if (key.size <= kSmallIcon)
        source.replace("stroke-width=\"1.5\"", "stroke-width=\"1.8\"");
    QSvgRenderer renderer(source);
    if (!renderer.isValid())
        return {};
    const int pixels = static_cast<int>(std::lround(key.size * key.scale));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(colour.alphaF());
    renderer.render(&painter);
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
    if (found == made.end())
        found = made.insert(key, Render(key, colour));
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
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(IconPixmap(QStringLiteral("velmora"), theme::Text, size, 1));
    return icon;
}

} // namespace velmora::controls
