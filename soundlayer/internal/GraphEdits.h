#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include <readerwriterqueue/readerwriterqueue.h>

namespace velmora::soundlayer {

/// A value that whoever pulls the graph reads and the interface thread replaces. What it held before goes back to the
/// interface thread with the edit that replaced it.
class Published {
public:
    /// The value in force. [RT]
    template <typename T>
    const T* Get() const
    {
        return static_cast<const T*>(m_value.get());
    }

private:
    friend class GraphEdits;
    std::shared_ptr<const void> m_value;
};

/// Carries edits of the graph to where it is pulled, so that the mixing thread waits for nobody.
///
/// An edit replaces published values; the edits between `Begin` and the outermost `End` take effect together. While
/// the mixing thread mixes they wait in a queue, and that thread applies them between two blocks; while it rests they
/// apply at once. Replaced values and retired objects come back through a second queue and are destroyed on the
/// interface thread. `BeginBlocks`, `BetweenBlocks` and `EndBlocks` are for the mixing thread, all else for the
/// interface thread.
class GraphEdits {
public:
    GraphEdits();
    /// Applies and frees what is left; the mixing thread has gone.
    ~GraphEdits();

    void Begin() { ++m_depth; }
    void End();

    /// Replaces what `slot`, a member of `owner`, holds.
    void Replace(std::shared_ptr<void> owner, Published& slot, std::shared_ptr<const void> value);
    /// Keeps `object` until no block that was under way can still use it.
    void Retire(std::shared_ptr<const void> object);

    /// Waits until every finished edit is in force, a few blocks at most. Within `Begin` it does nothing for what is
    /// still open.
    void Flush();

    /// The mixing thread is about to mix. False in the instant in which an edit is being applied: try again soon. [RT]
    bool BeginBlocks();
    /// Applies what waits. [RT]
    void BetweenBlocks() { ApplyPending(); }
    /// The mixing thread rests. [RT]
    void EndBlocks() { m_owner.store(Owner::Nobody, std::memory_order_release); }

private:
    struct Edit {
        std::shared_ptr<void> owner;
        Published* slot = nullptr;
        std::shared_ptr<const void> value;
    };
    using Batch = std::vector<Edit>;

    enum class Owner { Nobody, Mixer, Editor };

    static void Apply(Batch& batch);
    void ApplyPending();
    void TryApply();
    void Submit();
    void FreeApplied();

    static constexpr std::size_t kQueueLength = 1024;

    std::int32_t m_depth = 0;
    std::atomic<Owner> m_owner{Owner::Nobody};
    std::unique_ptr<Batch> m_open;
    moodycamel::ReaderWriterQueue<Batch*> m_pending;
    moodycamel::ReaderWriterQueue<Batch*> m_applied;
    /// How many batches were queued, applied and freed. Each side takes from a queue only what the other has counted.
    std::atomic<std::uint64_t> m_submitted{0};
    std::atomic<std::uint64_t> m_done{0};
    std::uint64_t m_freed = 0;
};

/// Edits made in its lifetime take effect together.
class EditScope {
public:
    explicit EditScope(GraphEdits& edits)
        : m_edits(edits)
    {
        m_edits.Begin();
    }
    ~EditScope() { m_edits.End(); }
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;

private:
    GraphEdits& m_edits;
};

} // namespace velmora::soundlayer
