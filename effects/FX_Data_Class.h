#pragma once

#include "core/Ports.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::effects {

/// The settings of one effect, kept as its parameter text so that nobody above needs to know the effect.
class FX_Data_Class {
public:
    explicit FX_Data_Class(core::MessageBoxes& messages);

    /// Index of the effect; -1 until loaded and for an unknown name.
    std::int32_t FxType() const { return m_fxType; }

    /// The text as last loaded, in the one form of `LoadXMLData`.
    const std::string& GetXMLData() const { return m_xmlData; }

    /// Takes a parameter text. Line ends and blanks between tags are left out, so that a saved text comes back as it
    /// went. Text of another kind is reported, and everything stays.
    bool LoadXMLData(std::string_view XMLData);

private:
    friend class FX_Chain_Class;
    /// `LoadXMLData` without the message.
    bool Read(std::string_view xml);
    static void ReportInvalidData(core::MessageBoxes& messages);

    core::MessageBoxes& m_messages;
    std::int32_t m_fxType = -1;
    std::string m_xmlData;
};

} // namespace velmora::effects
