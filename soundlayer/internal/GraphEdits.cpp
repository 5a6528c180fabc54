#include "soundlayer/internal/GraphEdits.h"

#include <chrono>
#include <thread>
#include <utility>

namespace velmora::soundlayer {

GraphEdits::GraphEdits()
    : m_pending(kQueueLength)
    , m_applied(kQueueLength)
{
}

GraphEdits::~GraphEdits()
{
    ApplyPending();
    FreeApplied();
}

void GraphEdits::End()
{
    if (--m_depth == 0 && m_open) {
        Submit();
    }
}

void GraphEdits::Replace(std::shared_ptr<void> owner, Published& slot, std::shared_ptr<const void> value)
{
    EditScope scope(*this);
    if (!m_open) {
        m_open = std::make_unique<Batch>();
    }
    m_open->push_back({std::move(owner), &slot, std::move(value)});
}

void GraphEdits::Retire(std::shared_ptr<const void> object)
{
    EditScope scope(*this);
    if (!m_open) {
        m_open = std::make_unique<Batch>();
    }
    m_open->push_back({nullptr, nullptr, std::move(object)});
}

void GraphEdits::Flush()
{
    TryApply();
    while (m_done.load(std::memory_order_acquire) != m_submitted.load(std::memory_order_relaxed)) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        TryApply();
    }
    FreeApplied();
}

bool GraphEdits::BeginBlocks()
{
    Owner nobody = Owner::Nobody;
    return m_owner.compare_exchange_strong(nobody, Owner::Mixer, std::memory_order_acq_rel);
}

void GraphEdits::TryApply()
{
    Owner nobody = Owner::Nobody;
    if (m_owner.compare_exchange_strong(nobody, Owner::Editor, std::memory_order_acq_rel)) {
        ApplyPending();
        m_owner.store(Owner::Nobody, std::memory_order_release);
    }
}

void GraphEdits::ApplyPending()
{
    const std::uint64_t submitted = m_submitted.load(std::memory_order_acquire);
    Batch* batch = nullptr;
    for (std::uint64_t done = m_done.load(std::memory_order_relaxed); done < submitted; ++done) {
        m_pending.try_dequeue(batch);
        Apply(*batch);
        // There is room: both queues are of one length, and the interface thread empties this one before it fills the
        // other.
        m_applied.try_enqueue(batch);
        m_done.store(done + 1, std::memory_order_release);
    }
}

void GraphEdits::Apply(Batch& batch)
{
    for (Edit& edit : batch) {
        if (edit.slot) {
            std::swap(edit.slot->m_value, edit.value);
        }
    }
}

void GraphEdits::Submit()
{
    std::unique_ptr<Batch> batch = std::move(m_open);
    FreeApplied();
    while (!m_pending.try_enqueue(batch.get())) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        TryApply();
        FreeApplied();
    }
    static_cast<void>(batch.release());
    m_submitted.fetch_add(1, std::memory_order_release);
    TryApply();
    FreeApplied();
}

void GraphEdits::FreeApplied()
{
    const std::uint64_t done = m_done.load(std::memory_order_acquire);
    Batch* batch = nullptr;
    for (; m_freed < done; ++m_freed) {
        m_applied.try_dequeue(batch);
        delete batch;
    }
}

} // namespace velmora::soundlayer
