#include "core/internal/DriveKinds.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

#include <sys/sysmacros.h>

namespace velmora::core {
namespace {

constexpr std::array<std::string_view, 12> kRemote{"nfs",        "nfs4",        "cifs",  "smb3", "smbfs",      "9p",
                                                   "fuse.sshfs", "fuse.rclone", "davfs", "afs",  "fuse.davfs", "ceph"};
constexpr std::array<std::string_view, 2> kOptical{"iso9660", "udf"};

/// The file system mounted from `device`, as "major:minor"; "" when there is none.
std::string FileSystemOf(const std::string& device)
{
    // Fields: id, parent, major:minor, root, mount point, options, optional fields, "-", file system, source, ...
    std::ifstream mounts("/proc/self/mountinfo");
    std::string line;
    while (std::getline(mounts, line)) {
        std::istringstream fields(line);
        std::string id, parent, number, word;
        fields >> id >> parent >> number;
        if (number != device) {
            continue;
        }
        while (fields >> word && word != "-") {
        }
        std::string fileSystem;
        fields >> fileSystem;
        return fileSystem;
    }
    return {};
}

bool IsRemovable(const std::string& device)
{
    std::error_code error;
    const std::filesystem::path entry = std::filesystem::canonical("/sys/dev/block/" + device, error);
    if (error) {
        return false;
    }
    if (entry.native().find("/usb") != std::string::npos) {
        return true;
    }
    // A partition's own folder lies in that of its disk, which tells.
    for (const std::filesystem::path& folder : {entry, entry.parent_path()}) {
        char flag = '0';
        if (std::ifstream(folder / "removable") >> flag) {
            return flag == '1';
        }
    }
    return false;
}

} // namespace

DriveKind KindOfDevice(dev_t device)
{
    const std::string number = std::to_string(major(device)) + ':' + std::to_string(minor(device));
    const std::string fileSystem = FileSystemOf(number);
    if (std::ranges::find(kRemote, fileSystem) != kRemote.end()) {
        return DriveKind::Remote;
    }
    if (std::ranges::find(kOptical, fileSystem) != kOptical.end()) {
        return DriveKind::Optical;
    }
    return IsRemovable(number) ? DriveKind::Removable : DriveKind::Fixed;
}

} // namespace velmora::core
