#include "controls/internal/PopupShape.h"

#include <QBitmap>
#include <QEvent>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace velmora::controls {
namespace {

constexpr double kShadowDown = 6;
constexpr double kShadowBlur = 20;
constexpr double kShadowAlpha = 0.45;
/// Beyond this nothing is seen of the shadow.
constexpr int kReach = 28;

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_connection_t* Connection()
{
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

/// Whether a compositing manager blends the windows of the first screen.
bool WindowsBlend(xcb_connection_t* connection)
{
    constexpr std::string_view Name("_NET_WM_CM_S0");
    const Owned<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, Name.size(), Name.data()), nullptr),
        &std::free);
    if (!atom) {
        return false;
    }
    const Owned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr),
        &std::free);
    return owner && owner->owner != XCB_NONE;
}

/// A box from `from` to `to`, blurred, at the middle of each pixel.
std::vector<double> Blurred(int pixels, double from, double to, double sigma)
{
    std::vector<double> values;
    for (int i = 0; i < pixels; ++i) {
        const double at = i + 0.5;
        const double unit = sigma * std::numbers::sqrt2;
        values.push_back((std::erf((at - from) / unit) - std::erf((at - to) / unit)) / 2);
    }
    return values;
}

/// The shadow of a box that begins `kReach` inside the picture and `kShadowDown` above its shadow.
QImage ShadowPicture(QSize pixels, double scale)
{
    const double sigma = kShadowBlur / 2 * scale;
    const double reach = kReach * scale;
    const double down = kShadowDown * scale;
    const auto across = Blurred(pixels.width(), reach, pixels.width() - reach, sigma);
    const auto along = Blurred(pixels.height(), reach + down, pixels.height() - reach + down, sigma);
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pixels.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            const double alpha =
                kShadowAlpha * across[static_cast<std::size_t>(x)] * along[static_cast<std::size_t>(y)];
            line[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(255 * alpha)));
        }
    }
    picture.setDevicePixelRatio(scale);
    return picture;
}

class ShadowWindow : public QWidget {
public:
    ShadowWindow(QWidget* popup, double radius)
        : QWidget(popup, Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                             Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus)
        , m_radius(radius)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const double scale = devicePixelRatio();
        const QSize pixels = (QSizeF(size()) * scale).toSize();
        if (m_picture.size() != pixels) {
            m_picture = ShadowPicture(pixels, scale);
        }
        QPainter painter(this);
        painter.drawImage(QPointF(), m_picture);
        // Nothing under the popup, but for its edge.
        const int inside = kReach + 1;
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(rect().adjusted(inside, inside, -inside, -inside), m_radius, m_radius);
    }

private:
    double m_radius;
    QImage m_picture;
};

} // namespace

PopupShape::PopupShape(QWidget* popup, double radius, Shadow shadow)
    : QObject(popup)
    , m_popup(popup)
    , m_radius(radius)
    , m_shadow(shadow)
{
    popup->installEventFilter(this);
}

void PopupShape::Attach(QWidget* popup, double radius, Shadow shadow)
{
    popup->setAttribute(Qt::WA_TranslucentBackground);
    popup->setWindowFlag(Qt::NoDropShadowWindowHint);
    if (Connection() && !popup->findChild<PopupShape*>(QString(), Qt::FindDirectChildrenOnly)) {
        new PopupShape(popup, radius, shadow);
    }
}

bool PopupShape::eventFilter(QObject* /*object*/, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
        Show();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (m_popup->isVisible()) {
            Show();
        }
        break;
    case QEvent::Hide:
        delete m_below.data();
        break;
    default:
        break;
    }
    return false;
}

void PopupShape::Show()
{
    if (!WindowsBlend(Connection())) {
        CutCorners();
        return;
    }
    m_popup->clearMask();
    if (m_shadow == Shadow::None) {
        return;
    }
    if (!m_below) {
        m_below = new ShadowWindow(m_popup, m_radius);
    }
    m_below->setGeometry(m_popup->geometry().adjusted(-kReach, -kReach, kReach, kReach));
    m_below->show();
    m_popup->raise();
}

void PopupShape::CutCorners()
{
    QBitmap mask(m_popup->size());
    mask.clear();
    QPainter painter(&mask);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(mask.rect(), m_radius, m_radius);
    painter.end();
    m_popup->setMask(mask);
}

} // namespace velmora::controls
