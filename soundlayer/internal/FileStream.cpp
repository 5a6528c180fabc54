#include "soundlayer/internal/FileStream.h"

#include <algorithm>
#include <utility>

namespace velmora::soundlayer {

FileStream::FileStream(std::string file, std::uint32_t flags, std::unique_ptr<FrameSource> source, Reopen reopen,
                       ReadAhead& workers)
    : Stream(source->Rate(), source->Channels(), flags)
    , m_file(std::move(file))
    , m_length(source->LengthFrames())
    , m_reopen(std::move(reopen))
    , m_workers(workers)
    , m_buffer(std::make_shared<ReadBuffer>(std::move(source), workers))
{
}

void FileStream::Open(GraphEdits& edits)
{
    Publish(edits);
}

bool FileStream::SetPosition(GraphEdits& edits, std::int64_t frame, bool sounding)
{
    const std::int64_t target = std::clamp<std::int64_t>(frame, 0, m_length);
    if (!sounding) {
        m_buffer->Seek(target);
        if (!m_workers.Alone()) {
            m_buffer->Request();
        }
        return true;
    }
    std::unique_ptr<FrameSource> source = m_reopen();
    if (!source) {
        return false;
    }
    m_buffer = std::make_shared<ReadBuffer>(std::move(source), m_workers);
    m_buffer->Seek(target);
    m_buffer->Request();
    Publish(edits);
    return true;
}

void FileStream::Publish(GraphEdits& edits)
{
    edits.Replace(shared_from_this(), m_reading, std::make_shared<const Reading>(Reading{m_buffer}));
}

Block FileStream::Generate(std::int16_t* out, std::size_t frames)
{
    return m_reading.Get<Reading>()->buffer->Read(out, frames);
}

} // namespace velmora::soundlayer
