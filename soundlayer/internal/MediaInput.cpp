#include "soundlayer/internal/MediaInput.h"

#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace velmora::soundlayer {

namespace {

constexpr const char* kFormats = "wav,w64,aiff,mp3,asf,flac,ogg,mov,aac";
constexpr int kIoBytes = 32 * 1024;
/// The largest table that a container's header may ask for at once. A day of packets fits.
constexpr std::size_t kLargestAllocation = std::size_t{128} << 20;

void SetUpLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(kLargestAllocation);
    });
}

/// In a row.
constexpr int kMostErrors = 100;

/// A container that names other files does not get them.
int RefuseFile(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**)
{
    return AVERROR(EACCES);
}

} // namespace

std::unique_ptr<MediaInput> MediaInput::Open(std::shared_ptr<const FileBytes> file)
{
    SetUpLibrary();
    std::unique_ptr<MediaInput> input(new MediaInput);
    input->m_cursor.file = std::move(file);
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(kIoBytes));
    input->m_io.reset(avio_alloc_context(buffer, kIoBytes, 0, &input->m_cursor, ReadBytes, nullptr, SeekBytes));
    AVFormatContext* format = avformat_alloc_context();
    if (!input->m_io || !format) {
        avformat_free_context(format);
        return nullptr;
    }
    format->pb = input->m_io.get();
    format->format_whitelist = av_strdup(kFormats);
    format->protocol_whitelist = av_strdup("file");
    format->io_open = RefuseFile;
    format->max_streams = 64;
    // On failure this frees the context.
    if (avformat_open_input(&format, input->m_cursor.file->Name().c_str(), nullptr, nullptr) < 0) {
        return nullptr;
    }
    input->m_format.reset(format);
    return input;
}

bool MediaInput::FindAudio()
{
    return avformat_find_stream_info(m_format.get(), nullptr) >= 0 &&
           ChooseStream(av_find_best_stream(m_format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0));
}

bool MediaInput::ChooseStream(int index)
{
    if (index < 0 || index >= static_cast<int>(m_format->nb_streams)) {
        return false;
    }
    m_stream = index;
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        AVStream& stream = *m_format->streams[i];
        if (static_cast<int>(i) != index) {
            stream.discard = AVDISCARD_ALL;
            // A cover picture may weigh more than all the rest.
            av_packet_unref(&stream.attached_pic);
        }
    }
    return true;
}

bool MediaInput::IsFormat(const char* name) const
{
    const std::string names = std::string(",") + m_format->iformat->name + ",";
    return names.find(std::string(",") + name + ",") != std::string::npos;
}

bool MediaInput::Read(AVPacket& packet)
{
    // Damage may be told as an error although sound follows.
    for (int errors = 0; errors < kMostErrors;) {
        av_packet_unref(&packet);
        const int result = av_read_frame(m_format.get(), &packet);
        if (result == AVERROR_EOF) {
            return false;
        }
        if (result < 0) {
            ++errors;
        } else if (packet.stream_index == m_stream) {
            return true;
        }
    }
    return false;
}

bool MediaInput::SeekToByte(std::int64_t position)
{
    return av_seek_frame(m_format.get(), m_stream, position, AVSEEK_FLAG_BYTE) >= 0;
}

bool MediaInput::SeekToStamp(std::int64_t stamp)
{
    return av_seek_frame(m_format.get(), m_stream, stamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

int MediaInput::ReadBytes(void* from, std::uint8_t* to, int count)
{
    auto& cursor = *static_cast<Cursor*>(from);
    const std::size_t got =
        cursor.file->ReadAt(cursor.position, {reinterpret_cast<std::byte*>(to), static_cast<std::size_t>(count)});
    cursor.position += static_cast<std::int64_t>(got);
    return got == 0 ? AVERROR_EOF : static_cast<int>(got);
}

std::int64_t MediaInput::SeekBytes(void* in, std::int64_t offset, int whence)
{
    auto& cursor = *static_cast<Cursor*>(in);
    if (whence == AVSEEK_SIZE) {
        return cursor.file->Size();
    }
    std::int64_t base = 0;
    if ((whence & ~AVSEEK_FORCE) == SEEK_CUR) {
        base = cursor.position;
    } else if ((whence & ~AVSEEK_FORCE) == SEEK_END) {
        base = cursor.file->Size();
    }
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0) {
        return AVERROR(EINVAL);
    }
    return cursor.position = target;
}

} // namespace velmora::soundlayer
