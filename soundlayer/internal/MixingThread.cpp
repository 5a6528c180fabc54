#include "soundlayer/internal/MixingThread.h"

namespace velmora::soundlayer {

namespace {
thread_local bool t_mixing = false;
}

bool OnMixingThread()
{
    return t_mixing;
}

MixingThreadMark::MixingThreadMark()
{
    t_mixing = true;
}

MixingThreadMark::~MixingThreadMark()
{
    t_mixing = false;
}

} // namespace velmora::soundlayer
