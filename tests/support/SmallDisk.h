#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/mount.h>

namespace velmora::testing {

/// A disk of its own in place of a folder's content for as long as this lives, where the system lets us mount one.
class SmallDisk {
public:
    SmallDisk(std::filesystem::path folder, std::uintmax_t bytes)
        : m_folder(std::move(folder))
        , m_mounted(mount("none", m_folder.c_str(), "tmpfs", 0, ("size=" + std::to_string(bytes)).c_str()) == 0)
    {
    }
    ~SmallDisk()
    {
        if (m_mounted) {
            umount2(m_folder.c_str(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool Mounted() const { return m_mounted; }
    /// Leaves about so much room.
    void FillBut(std::uintmax_t bytes) const
    {
        std::ofstream file(Filler(), std::ios::binary);
        const std::string piece(1 << 16, 'x');
        while (std::filesystem::space(m_folder).available > bytes + piece.size() && file.flush()) {
            file << piece;
        }
    }
    void MakeRoom() const { std::filesystem::remove(Filler()); }

private:
    std::filesystem::path Filler() const { return m_folder / "filler"; }

    const std::filesystem::path m_folder;
    const bool m_mounted;
};

} // namespace velmora::testing
