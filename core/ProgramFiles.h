#pragma once

#include <string>
#include <string_view>

namespace velmora::core {

/// The folder of what is delivered with the program (path table, sounds, examples, help), in the internal form: the
/// first that holds `paths.cfg` of the program's own folder, `../share/velmora` beside it, where an installation puts
/// them, and `../../../resources`, where they lie for a program in its build tree. The program's own folder when there
/// is none.
std::string ProgramFilesFolder();
/// The same for a program at `program`, a path in the system's form.
std::string ProgramFilesFolderOf(std::string_view program);

} // namespace velmora::core
