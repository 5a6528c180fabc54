#pragma once

#include "soundlayer/internal/ReadAhead.h"
#include "soundlayer/internal/Stream.h"

#include <functional>
#include <memory>
#include <string>

namespace velmora::soundlayer {

/// A file as a stream, decoded ahead.
class FileStream : public Stream {
public:
    /// Opens the file once more, as it was opened first; null when that is not possible any more.
    using Reopen = std::function<std::unique_ptr<FrameSource>()>;

    FileStream(std::string file, std::uint32_t flags, std::unique_ptr<FrameSource> source, Reopen reopen,
               ReadAhead& workers);
    /// Makes the file readable; once, before the first pull.
    void Open(GraphEdits& edits);

    std::int64_t LengthFrames() const override { return m_length; }
    /// While the stream sounds, the file is opened anew at the position and swapped in between two blocks.
    bool SetPosition(GraphEdits& edits, std::int64_t frame, bool sounding) override;
    const char* FileName() const override { return m_file.c_str(); }
    bool PullsAlone() const override { return false; }
    /// Decodes `frames` frames ahead of the present position, or as many as are held, on the calling thread.
    void Prepare(std::size_t frames) { m_buffer->Fill(frames); }

protected:
    Block Generate(std::int16_t* out, std::size_t frames) override;

private:
    struct Reading {
        std::shared_ptr<ReadBuffer> buffer;
    };

    void Publish(GraphEdits& edits);

    const std::string m_file;
    const std::int64_t m_length;
    Reopen m_reopen;
    ReadAhead& m_workers;
    std::shared_ptr<ReadBuffer> m_buffer;
    Published m_reading;
};

} // namespace velmora::soundlayer
