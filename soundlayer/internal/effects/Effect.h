#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace velmora::soundlayer {

/// What one effect does to the sound of a stream: both sides in place, full scale 1.
///
/// The result depends on the frames alone, never on how they are cut into calls. Threads: `Process`, `Skip`, `AtRest`
/// and the end of a life belong to whoever pulls the stream; parameters may come from another thread meanwhile.
class Effect {
public:
    virtual ~Effect() = default;

    /// Takes the parameter block of the effect's kind; a value outside its limits is limited, one that is no number
    /// gives way to its default. What sounds glides there; before the first `Process` it is there at once. Waits for
    /// nobody; one thread at a time.
    virtual void SetParameters(const void* block) = 0;

    /// Works on `frames` frames, any number. Finite in, finite out. [RT]
    virtual void Process(float* left, float* right, std::size_t frames) = 0;

    /// As `Process` of the first effects of `row`, of which this is the first, one after the other. How many it did: at
    /// least one, more where effects of one kind are cheaper together. [RT]
    virtual std::size_t ProcessRow(std::span<Effect* const> /*row*/, float* left, float* right, std::size_t frames)
    {
        Process(left, right, frames);
        return 1;
    }

    /// What `Process` would do to `frames` frames of silence while `AtRest`, for next to nothing. [RT]
    virtual void Skip(std::size_t frames) = 0;

    /// After silence has come in: nothing more will come out, so that silent blocks need not be processed. [RT]
    virtual bool AtRest() const = 0;
};

/// An effect of one of the types of `BASS_ChannelSetFX` at its default parameters, for sound of `rate` Hz; null for
/// another type.
std::unique_ptr<Effect> MakeEffect(std::uint32_t type, std::uint32_t rate);

} // namespace velmora::soundlayer
