#pragma once

#include <marlet/foundation/KyCriticalSection.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>

namespace kyh::media
{

/// Keeps what streams read with while nobody reads through it. Whoever reads takes it out, so it may go at
/// any time in here: those that rest longest go when there are too many, or when they hold too much of the
/// budget for frames. Any thread may use it; nothing is closed while its lock is held.
class LiveDecoders
{
public:
    static constexpr std::size_t kMost = 16;

    class Decoder
    {
    public:
        virtual ~Decoder() = default;
        /// Of memory, about.
        virtual std::size_t Bytes() const = 0;
    };

    /// What a stream put in here, or null if it has gone. `stream` is of FrameCache::NewStream.
    std::unique_ptr<Decoder> Take(std::uint64_t stream);
    /// Closes it instead.
    void Drop(std::uint64_t stream);
    /// `budget` is that of the frames, in bytes, and `reads` how many were asked for so far.
    void Keep(std::uint64_t stream, std::unique_ptr<Decoder> decoder, std::size_t budget,
              std::uint64_t reads);
    /// Closes those that rest longest until the others hold no more than their part of a budget that has
    /// become smaller: none at all of 0.
    void CloseBeyond(std::size_t budget);

private:
    struct Resting {
        std::uint64_t stream;
        std::unique_ptr<Decoder> decoder;
        std::size_t bytes;
        std::uint64_t since; ///< which read
    };

    bool IsOneTooMany(std::size_t budget, std::uint64_t reads) const;
    void TakeOldest(std::list<Resting> &gone);
    void Close(std::list<Resting> &&gone);

    std::atomic<std::size_t> closedBytes_ = 0; ///< since they were given back
    kytl::thread::KyCriticalSection lock_;     ///< of what follows
    std::list<Resting> resting_;               ///< the last that came stands at the front
    std::size_t bytes_ = 0;
};

} // namespace kyh::media
