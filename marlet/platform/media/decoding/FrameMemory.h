#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/platform/media/LibavHandles.h>

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace kyh::media
{

struct FreeBuffer {
    void operator()(AVBufferRef *buffer) const { av_buffer_unref(&buffer); }
};
using BufferPtr = std::unique_ptr<AVBufferRef, FreeBuffer>;

/// Memory that frames are decoded into, which counts what is in use. The pools of libav keep what was freed
/// as long as the decoder lives, and nobody can ask them how much that is. Any thread may use it; it must
/// outlive its buffers.
class FrameMemory
{
public:
    FrameMemory() = default;
    FrameMemory(const FrameMemory &) = delete;
    FrameMemory &operator=(const FrameMemory &) = delete;
    ~FrameMemory();

    /// Bytes, of buffers in use and of those that wait to be used again.
    std::size_t Bytes() const;
    /// Bytes are those of another buffer that went, or 0. Null if memory has run out.
    BufferPtr New(std::size_t size);
    /// The same out of what waits to be used again, or null.
    BufferPtr Reuse(std::size_t size);
    /// Whether a buffer is of this memory.
    bool Has(const AVBufferRef &buffer) const;
    /// Gives back what waits to be used again. False if nothing does.
    bool FreeIdle();

private:
    struct Block {
        FrameMemory *owner;
        std::size_t size;
        unsigned char *bytes;
    };

    static void Release(void *block, std::uint8_t *bytes);
    static unsigned char *Allocate(std::size_t size);
    static void Free(const Block &block);
    BufferPtr Wrap(std::unique_ptr<Block> block);
    void Keep(std::unique_ptr<Block> block);

    mutable kytl::thread::KyCriticalSection lock_; ///< of what follows
    std::unordered_set<const void *> used_;
    std::vector<std::unique_ptr<Block>> idle_; ///< the one that went last stands at the end
    std::size_t usedBytes_ = 0;
    std::size_t idleBytes_ = 0;
};

} // namespace kyh::media
