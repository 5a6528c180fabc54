#pragma once

namespace velmora::soundlayer {

/// True on a thread that fills the device's ring or serves the device just now, where nothing may wait, allocate or
/// touch a file. [RT]
bool OnMixingThread();

/// Declares the present thread to be mixing until its end.
class MixingThreadMark {
public:
    MixingThreadMark();
    ~MixingThreadMark();
    MixingThreadMark(const MixingThreadMark&) = delete;
    MixingThreadMark& operator=(const MixingThreadMark&) = delete;
};

} // namespace velmora::soundlayer
