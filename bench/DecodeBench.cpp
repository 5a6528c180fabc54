/// Reads stretches of files to their end through the clip reader and drops them: what no mixer can do without.
/// Usage: velmora-decode-bench RATE < LIST, lines of "start ms, length ms, file", parted by tabs. RATE 0 reads each
/// file at its own rate.

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/ClipReader.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    using namespace velmora::soundlayer;
    const auto rate = static_cast<std::uint32_t>(argc > 1 ? std::atoi(argv[1]) : 0);
    std::vector<std::int16_t> block(2 * 4096);
    std::int64_t frames = 0;
    std::int64_t startMS = 0;
    std::int64_t lengthMS = 0;
    std::string file;
    while (std::cin >> startMS >> lengthMS && std::cin.ignore() && std::getline(std::cin, file)) {
        OpenResult result = OpenResult::Ok;
        auto audio = AudioFile::Open(file, result);
        if (audio == nullptr) {
            std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
            return 1;
        }
        const std::uint32_t clipRate = rate != 0 ? rate : audio->Rate();
        ClipReader reader(std::move(audio), clipRate);
        reader.Seek(startMS * clipRate / 1000);
        std::int64_t left = lengthMS * clipRate / 1000;
        while (left > 0) {
            const auto wanted = static_cast<std::size_t>(left < 4096 ? left : 4096);
            const std::size_t got = reader.Read(std::span(block).first(2 * wanted));
            frames += static_cast<std::int64_t>(got);
            left = got < wanted ? 0 : left - static_cast<std::int64_t>(got);
        }
    }
    std::printf("%lld\n", static_cast<long long>(frames));
    return 0;
}
