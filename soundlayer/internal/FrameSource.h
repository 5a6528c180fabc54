#pragma once

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/ClipReader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

namespace velmora::soundlayer {

/// Frames of a file at some rate, read from any position on. One thread at a time.
class FrameSource {
public:
    virtual ~FrameSource() = default;
    virtual std::uint32_t Rate() const = 0;
    virtual std::uint32_t Channels() const = 0;
    virtual std::int64_t LengthFrames() const = 0;
    virtual void Seek(std::int64_t frame) = 0;
    /// Frames written, fewer only at the end.
    virtual std::size_t Read(std::span<std::int16_t> interleaved) = 0;
};

/// A file as it is.
class PlainSource final : public FrameSource {
public:
    explicit PlainSource(std::unique_ptr<AudioFile> file)
        : m_file(std::move(file))
    {
    }
    std::uint32_t Rate() const override { return m_file->Rate(); }
    std::uint32_t Channels() const override { return m_file->Channels(); }
    std::int64_t LengthFrames() const override { return m_file->LengthFrames(); }
    void Seek(std::int64_t frame) override { m_file->Seek(frame); }
    std::size_t Read(std::span<std::int16_t> interleaved) override { return m_file->Read(interleaved); }

private:
    std::unique_ptr<AudioFile> m_file;
};

/// A file in stereo at the rate asked for.
class ClipSource final : public FrameSource {
public:
    ClipSource(std::unique_ptr<AudioFile> file, std::uint32_t rate)
        : m_reader(std::move(file), rate)
    {
    }
    std::uint32_t Rate() const override { return m_reader.Rate(); }
    std::uint32_t Channels() const override { return 2; }
    std::int64_t LengthFrames() const override { return m_reader.LengthFrames(); }
    void Seek(std::int64_t frame) override { m_reader.Seek(frame); }
    std::size_t Read(std::span<std::int16_t> stereo) override { return m_reader.Read(stereo); }

private:
    ClipReader m_reader;
};

} // namespace velmora::soundlayer
