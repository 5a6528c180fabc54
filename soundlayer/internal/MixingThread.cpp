#include "soundlayer/internal/MixingThread.h"

namespace velmora::soundlayer {

namespace {
/// Of the model that needs no allocation when a thread first looks at it.
[[gnu::tls_model("initial-exec")]] thread_local bool t_mixing = false;
} // namespace

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
