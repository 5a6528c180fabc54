#pragma once

namespace velmora::soundlayer {

/// True on the thread that mixes for the device, where nothing may wait, allocate or touch a file. [RT]
bool OnMixingThread();

/// Declares the present thread the mixing thread for as long as it lives.
class MixingThreadMark {
public:
    MixingThreadMark();
    ~MixingThreadMark();
    MixingThreadMark(const MixingThreadMark&) = delete;
    MixingThreadMark& operator=(const MixingThreadMark&) = delete;
};

} // namespace velmora::soundlayer
