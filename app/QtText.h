#pragma once

#include "controls/QtText.h"

#include <QString>
#include <string>

/// Text crosses between the program's UTF-8 and Qt's here.
namespace velmora::app {

using controls::ToQt;

inline std::string FromQt(const QString& text)
{
    return text.toStdString();
}

} // namespace velmora::app
