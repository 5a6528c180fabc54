#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>
#include <cstdint>

/// The look's tokens. Nobody else writes a colour, a family of fonts or a radius. Sizes are logical pixels.
namespace velmora::controls::theme {

namespace detail {
constexpr QColor Rgb(std::uint32_t value)
{
    return {static_cast<int>(value >> 16U & 0xFFU), static_cast<int>(value >> 8U & 0xFFU),
            static_cast<int>(value & 0xFFU)};
}
} // namespace detail

// Grounds
inline constexpr QColor Ground = detail::Rgb(0x131417);  ///< rows of the timeline, overview
inline constexpr QColor Headers = detail::Rgb(0x191B1E); ///< ruler, track headers, lane of the marks
inline constexpr QColor Deck = detail::Rgb(0x1E2024);    ///< toolbar, mixer, dialogs, lanes of scroll bars
inline constexpr QColor Raised = detail::Rgb(0x2C2F36);  ///< buttons, combos, menus, panels that float
inline constexpr QColor Hover = detail::Rgb(0x3A3E47);   ///< a control under the pointer, tool tips
inline constexpr QColor Pressed = detail::Rgb(0x17181B);
inline constexpr QColor Well = detail::Rgb(0x0F1012); ///< fields, lists, time display, grooves

// Lines
inline constexpr QColor Line = detail::Rgb(0x31343B);
inline constexpr QColor RowLine = detail::Rgb(0x25272C);
inline constexpr QColor Mark = detail::Rgb(0x777C86);      ///< ticks, outlines of check boxes and menus, scroll thumbs
inline constexpr QColor Light = QColor(255, 255, 255, 18); ///< the upper edge of what is raised

// Texts
inline constexpr QColor Text = detail::Rgb(0xECEDEF);
inline constexpr QColor Text2 = detail::Rgb(0xAEB3BC); ///< captions, hints, ruler
inline constexpr QColor Text3 = detail::Rgb(0x7D828C); ///< disabled

// The accent: "this much" and "this is on"
inline constexpr QColor Accent = detail::Rgb(0xF0AE4A);
inline constexpr QColor AccentHi = detail::Rgb(0xF8C87A);
inline constexpr QColor AccentLo = detail::Rgb(0xD6932F);
inline constexpr QColor AccentInk = detail::Rgb(0x1B1305);
inline constexpr QColor AccentDim = detail::Rgb(0x3A2E1A); ///< the ground of what is chosen
inline constexpr QColor AccentDimHi = detail::Rgb(0x4A3A20);

// Recording, and nothing else
inline constexpr QColor Rec = detail::Rgb(0xEE4F52);
inline constexpr QColor RecHi = detail::Rgb(0xFF8A86);
inline constexpr QColor RecDim = detail::Rgb(0x3B1A1D);
inline constexpr QColor RecInk = detail::Rgb(0xFFFFFF);

// Fader cap and knobs
inline constexpr QColor Handle = detail::Rgb(0xD5D8DD);
inline constexpr QColor HandleHi = detail::Rgb(0xFFFFFF);
inline constexpr QColor MuteOnHi = detail::Rgb(0xFFFFFF); ///< Mute while on, under the pointer

// Clips
inline constexpr QColor ClipBar = detail::Rgb(0x3C424C);
inline constexpr QColor ClipEdge = detail::Rgb(0x737C8B);
inline constexpr QColor ClipBody = detail::Rgb(0x292D34);
inline constexpr QColor ClipWave = detail::Rgb(0x8B94A3);
inline constexpr QColor ClipFade = detail::Rgb(0x1F2227);
inline constexpr QColor SelBody = detail::Rgb(0x3B2F1B);
inline constexpr QColor SelWave = detail::Rgb(0xF0AE4A);
inline constexpr QColor SelFade = detail::Rgb(0x281F12);
inline constexpr QColor Cursor = detail::Rgb(0xFFFFFF);

// Meters
inline constexpr QColor Meter1 = detail::Rgb(0x86D54A);
inline constexpr QColor Meter2 = detail::Rgb(0xFF5A3C);
inline constexpr QColor MeterOff = detail::Rgb(0x2A2D33);

// Shape
inline constexpr double kSmallRadius = 3; ///< check box, chip, label of a mark
inline constexpr double kRadius = 4;      ///< every control and clip
inline constexpr double kMenuRadius = 6;
inline constexpr int kControlHeight = 26;
inline constexpr int kSmallHeight = 20; ///< step buttons and sliders

/// Inter, else DejaVu Sans, else sans-serif.
QFont Font(int pixels, QFont::Weight weight = QFont::Normal);
/// For Fusion, so that native dialogs and message boxes belong.
QPalette Palette();

/// The theme's colour for one of the clip's plain values (0xBBGGRR); any other value is itself.
QColor ClipColour(std::uint32_t plain);

} // namespace velmora::controls::theme
