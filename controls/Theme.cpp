#include "controls/Theme.h"

namespace velmora::controls::theme {

QFont Font(int pixels, QFont::Weight weight)
{
    QFont font;
    font.setFamilies({QStringLiteral("Inter"), QStringLiteral("DejaVu Sans"), QStringLiteral("sans-serif")});
    font.setPixelSize(pixels);
    font.setWeight(weight);
    // Shapes and widths then are the same at every scale.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QPalette Palette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, Deck);
    palette.setColor(QPalette::WindowText, Text);
    palette.setColor(QPalette::Base, Well);
    palette.setColor(QPalette::AlternateBase, Headers);
    palette.setColor(QPalette::Text, Text);
    palette.setColor(QPalette::PlaceholderText, Text2);
    palette.setColor(QPalette::Button, Raised);
    palette.setColor(QPalette::ButtonText, Text);
    palette.setColor(QPalette::BrightText, AccentHi);
    palette.setColor(QPalette::Highlight, Accent);
    palette.setColor(QPalette::HighlightedText, AccentInk);
    palette.setColor(QPalette::ToolTipBase, Hover);
    palette.setColor(QPalette::ToolTipText, Text);
    palette.setColor(QPalette::Link, AccentHi);
    palette.setColor(QPalette::LinkVisited, AccentHi);
    palette.setColor(QPalette::Light, Hover);
    palette.setColor(QPalette::Midlight, Raised);
    palette.setColor(QPalette::Mid, Line);
    palette.setColor(QPalette::Dark, Ground);
    palette.setColor(QPalette::Shadow, Well);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, Text3);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, Raised);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, Text3);
    return palette;
}

QColor ClipColour(std::uint32_t plain)
{
    switch (plain) {
    case 0xFFFFFF:
        return SelBody;
    case 0xE34040:
        return SelWave;
    case 0xCDF3FF:
    case 0xA5E9FF:
        return SelFade;
    case 0xF1F0F0:
        return ClipBody;
    case 0x838080:
        return ClipWave;
    case 0xDFD9D9:
    case 0xCECED6:
        return ClipFade;
    case 0x000000:
        return Cursor;
    default:
        return {static_cast<int>(plain & 0xFFU), static_cast<int>(plain >> 8U & 0xFFU),
                static_cast<int>(plain >> 16U & 0xFFU)};
    }
}

} // namespace velmora::controls::theme
