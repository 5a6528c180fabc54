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

/// Carries edits of the graph to the thread that pulls it, so that this thread waits for nobody.
///
/// An edit replaces published values; the edits between `Begin` and the outermost `End` take effect together. While
/// the mixing thread runs they wait in a queue, and that thread applies them between two blocks; otherwise they apply
/// at once. Replaced values and retired objects come back through a second queue and are destroyed on the interface
/// thread. All but `ApplyPending` is for the interface thread.
class GraphEdits {
public:
    GraphEdits();
    ~GraphEdits();

    void Begin() { ++m_depth; }
    void End();

    /// Replaces what `slot`, a member of `owner`, holds.
    void Replace(std::shared_ptr<void> owner, Published& slot, std::shared_ptr<const void> value);
    /// Keeps `object` until no block that was under way can still use it.
    void Retire(std::shared_ptr<const void> object);

    /// Says who applies edits from now on. Call it with true before the mixing thread starts, and with false once it
    /// has ended its last block: what still waits then applies at once.
    void SetMixing(bool mixing);
    /// Waits until every finished edit is in force. No use inside `Begin`.
    void Flush();
    /// Applies what waits. Mixing thread, between two blocks. [RT]
    void ApplyPending();

private:
    struct Edit {
        std::shared_ptr<void> owner;
        Published* slot = nullptr;
        std::shared_ptr<const void> value;
    };
    using Batch = std::vector<Edit>;

    static void Apply(Batch& batch);
    void Submit();
    void FreeApplied();

    static constexpr std::size_t kQueueLength = 1024;

    std::int32_t m_depth = 0;
    bool m_mixing = false;
    std::unique_ptr<Batch> m_open;
    moodycamel::ReaderWriterQueue<Batch*> m_pending;
    moodycamel::ReaderWriterQueue<Batch*> m_applied;
    std::uint64_t m_submitted = 0;
    std::atomic<std::uint64_t> m_done{0};
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
