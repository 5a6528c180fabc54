#pragma once

#include <string>
#include <string_view>

/// Path text has one form inside the program, that of saved files: a drive and backslashes. On POSIX the whole file
/// tree is drive `Z:`. These two functions convert, one where a path enters, one where a file is touched.
namespace velmora::core {

/// `/home/ann/a.wav` becomes `Z:\home\ann\a.wav`; a backslash or colon inside a name is carried as U+F05C or U+F03A.
/// A relative path is taken from the current folder.
std::string InternalPath(std::string_view posixPath);

/// The opposite. A drive other than `Z:`, and a path without a drive, resolve to nothing: "".
std::string PosixPath(std::string_view internalPath);

} // namespace velmora::core
