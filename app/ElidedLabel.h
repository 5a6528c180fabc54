#pragma once

#include <QLabel>

namespace velmora::app {

/// A line of text, cut in its middle where it does not fit; the tool tip has all of it.
class ElidedLabel final : public QLabel {
public:
    using QLabel::QLabel;

    void SetText(const QString& text);
    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace velmora::app
