#pragma once

#include <marlet/platform/media/decoding/FrameMemory.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <unordered_map>

namespace kyh::media
{

/// Keeps what was decoded within a budget of memory: what nobody has asked for longest goes first. The budget
/// is for the memory of all frames, also of those that decoders work on, and for what is charged. Any thread
/// may use it; nothing is decoded or freed while its lock is held.
class FrameCache
{
public:
    static constexpr std::size_t kUsualBudget = std::size_t{256} << 20;

    enum class Kind { Frame, Picture, Sound };
    struct Key {
        std::uint64_t stream; ///< of NewStream
        Kind kind;
        std::int64_t number;

        bool operator==(const Key &) const = default;
    };

    FrameCache() = default;
    FrameCache(const FrameCache &) = delete;
    FrameCache &operator=(const FrameCache &) = delete;

    /// Bytes. 0 keeps nothing.
    std::size_t Budget() const { return budget_; }
    void SetBudget(std::size_t bytes);
    /// Bytes that count, of which decoders alone may need more than the budget.
    std::size_t Used() const;

    std::uint64_t NewStream() { return ++streams_; }
    /// Notes that a stream is read. Returns how many are of late, this one among them.
    std::size_t CountReaders(std::uint64_t stream);
    /// How often one was.
    std::uint64_t Reads() const { return reads_; }
    /// Makes `frame` refer to what is kept. False if nothing is.
    bool Find(const Key &key, AVFrame &frame);
    /// Keeps a reference to a frame, or to the bytes in its first buffer.
    void Put(const Key &key, const AVFrame &frame);
    /// Forgets all of a stream.
    void Drop(std::uint64_t stream);

    /// Memory that counts, for which others go. Null if memory has run out.
    BufferPtr NewBuffer(std::size_t size);
    /// Counts what something holds beside frames, or no longer holds.
    void Charge(std::size_t bytes);
    void Discharge(std::size_t bytes) { charged_ -= bytes; }

private:
    struct Entry {
        Key key;
        FramePtr frame;
        std::size_t foreignBytes; ///< of memory that is not counted itself
    };
    struct Hash {
        std::size_t operator()(const Key &key) const;
    };
    using Entries = std::list<Entry>;

    std::size_t ForeignBytes(const AVFrame &frame) const;
    Entries Take(Entries::iterator entry);
    Entries TakeOldest();
    void Shrink();

    std::atomic<std::size_t> budget_ = kUsualBudget;
    std::atomic<std::uint64_t> streams_ = 0;
    std::atomic<std::uint64_t> reads_ = 0;
    std::atomic<std::size_t> charged_ = 0;
    std::atomic<std::size_t> foreignBytes_ = 0;
    FrameMemory memory_;                   // behind the entries, which lie in it
    kytl::thread::KyCriticalSection lock_; ///< of what follows
    Entries entries_;                      ///< the last that was asked for stands at the front
    std::unordered_map<Key, Entries::iterator, Hash> places_;
    std::unordered_map<std::uint64_t, std::uint64_t> readers_; ///< by stream, when it was read
};

} // namespace kyh::media
