#pragma once

#include <string>
#include <string_view>

/// Path text has one form inside the program, that of saved files: a drive and backslashes. On POSIX the whole file
/// tree is drive `Z:`. These two functions convert, one where a path enters, one where a file is touched.
namespace velmora::core {

/// `/home/ann/a.wav` becomes `Z:\home\ann\a.wav`; a backslash or colon inside a name is carried as U+F05C or U+F03A.
/// A relative path is taken from the current folder. Names "." and doubled or trailing slashes go; ".." and links stay
/// as they are. An empty path stays empty.
std::string InternalPath(std::string_view posixPath);

/// The opposite. A drive other than `Z:`, a path without a drive, and one that holds a character 0 resolve to nothing:
/// "". A slash parts names as a backslash does.
std::string PosixPath(std::string_view internalPath);

/// One name of a path, as it stands on disk and inside the program.
std::string InternalName(std::string_view posixName);
std::string PosixName(std::string_view internalName);

} // namespace velmora::core
