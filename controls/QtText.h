#pragma once

#include <QString>
#include <string_view>

namespace velmora::controls {

/// The program's UTF-8 as Qt's text.
inline QString ToQt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace velmora::controls
