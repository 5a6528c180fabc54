#include "core/ImportAudioFile.h"

#include "core/TextUtilities.h"

namespace velmora::core {

std::string ImportAudioFile(Files& files, std::string_view audioFolder, std::string_view Path)
{
    constexpr double kRoomLeftBytes = 1000000;
    constexpr int kLastNumber = 1000;
    const std::int64_t length = files.FileLength(Path);
    if (length < 0 || files.KindOfDrive(Path) == DriveKind::Fixed) {
        return std::string(Path);
    }
    const std::string folder = std::string(audioFolder) + '\\';
    const std::string name = FileNameOfPath(Path);
    const std::string lowerName = LowerCase(name);
    for (const std::string& present : files.ListFiles(audioFolder, "*.*")) {
        if (LowerCase(present).starts_with(lowerName) && files.FileLength(folder + present) == length) {
            return present;
        }
    }
    if (files.DiskFreeBytes(audioFolder) < static_cast<double>(length) + kRoomLeftBytes) {
        return std::string(Path);
    }
    std::string copy = name;
    for (int i = 1; i <= kLastNumber && files.FileExists(folder + copy); ++i) {
        copy = std::to_string(i) + " - " + name;
    }
    return files.CopyFile(Path, folder + copy) ? copy : std::string(Path);
}

} // namespace velmora::core
