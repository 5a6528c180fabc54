#include "app/ElidedLabel.h"

#include "controls/Drawing.h"

#include <QPainter>

namespace velmora::app {

void ElidedLabel::SetText(const QString& text)
{
    setText(text);
    setToolTip(text);
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(palette().color(foregroundRole()));
    controls::DrawElided(painter, rect(), Qt::AlignLeft, text(), Qt::ElideMiddle);
}

} // namespace velmora::app
