#pragma once

#include "soundlayer/internal/AvHandles.h"
#include "soundlayer/internal/FileBytes.h"

namespace velmora::soundlayer {

/// The packets of one audio stream of a container. It reads the file it was given and never opens another, whatever
/// the container asks for. One thread at a time.
class MediaInput {
public:
    /// Null when the file is of no format that is read.
    static std::unique_ptr<MediaInput> Open(std::shared_ptr<const FileBytes> file);
    MediaInput(const MediaInput&) = delete;
    MediaInput& operator=(const MediaInput&) = delete;

    /// Looks into the packets for what the header does not tell, and chooses the best audio stream; false if none.
    bool FindAudio();
    /// Chooses the stream that `FindAudio` chose in another opening of the file; false if it is not there (yet).
    bool ChooseStream(int index);

    AVFormatContext& Format() { return *m_format; }
    /// Only once a stream is chosen.
    AVStream& Stream() { return *m_format->streams[m_stream]; }
    int StreamIndex() const { return m_stream; }
    bool IsFormat(const char* name) const;

    /// The next packet of the stream; false at the end or where reading on is impossible.
    bool Read(AVPacket& packet);
    bool SeekToByte(std::int64_t position);
    /// To a packet at or before `stamp`, in the stream's time base.
    bool SeekToStamp(std::int64_t stamp);

private:
    struct Cursor {
        std::shared_ptr<const FileBytes> file;
        std::int64_t position = 0;
    };
    MediaInput() = default;
    static int ReadBytes(void* from, std::uint8_t* to, int count);
    static std::int64_t SeekBytes(void* in, std::int64_t offset, int whence);

    // In this order: the format reads through the context, which reads through the cursor.
    Cursor m_cursor;
    IoPtr m_io;
    FormatPtr m_format;
    int m_stream = -1;
};

} // namespace velmora::soundlayer
