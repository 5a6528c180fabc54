#pragma once

#include "core/Ports.h"

#include <string>

namespace velmora::app {

/// Modal boxes over the window in use; paths stand as the system writes them. Texts are plain.
class QtMessageBoxes final : public core::MessageBoxes {
public:
    void Show(std::string_view text, core::Icon icon, std::string_view title) override;
    core::Answer Ask(std::string_view text, core::Buttons buttons, core::Icon icon, std::string_view title) override;
    void Beep() override;
    void SetNotes(const core::BoxNotes& notes) override { m_notes = notes; }

private:
    core::BoxNotes m_notes;
};

class QtInputBox final : public core::InputBox {
public:
    std::optional<std::string> Ask(std::string_view title, std::string_view prompt,
                                   std::string_view suggestion) override;
};

} // namespace velmora::app
