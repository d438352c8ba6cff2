#include <marlet/platform/media/decoding/FrameMemory.h>

#include <sys/mman.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

namespace
{

/// From this size on, blocks are whole pages of their own: a heap would keep them.
constexpr std::size_t kSmallestMapping = std::size_t{1} << 18;
constexpr std::size_t kMostIdle = std::size_t{16} << 20;

} // namespace

FrameMemory::~FrameMemory()
{
    FreeIdle();
}

unsigned char *FrameMemory::Allocate(std::size_t size)
{
    if (size < kSmallestMapping)
        return static_cast<unsigned char *>(av_mallocz(size));
    // Touching page by page would cost more than what a fast decoder writes.
    void *bytes =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    return bytes == MAP_FAILED ? nullptr : static_cast<unsigned char *>(bytes);
}

void FrameMemory::Free(const Block &block)
{
    if (block.size < kSmallestMapping)
        av_free(block.bytes);
    else
        ::munmap(block.bytes, block.size);
}

std::size_t FrameMemory::Bytes() const
{
    const KyScopedLock lock(lock_);
    return usedBytes_ + idleBytes_;
}

BufferPtr FrameMemory::Wrap(std::unique_ptr<Block> block)
{
    BufferPtr buffer(av_buffer_create(block->bytes, block->size, Release, block.get(), 0));
    if (!buffer) {
        Free(*block);
        return nullptr;
    }
    const KyScopedLock lock(lock_);
    usedBytes_ += block->size;
    used_.insert(block.release());
    return buffer;
}

BufferPtr FrameMemory::New(std::size_t size)
{
    auto block = std::make_unique<Block>(Block{this, size, Allocate(size)});
    return block->bytes ? Wrap(std::move(block)) : nullptr;
}

BufferPtr FrameMemory::Reuse(std::size_t size)
{
    std::unique_ptr<Block> block;
    {
        const KyScopedLock lock(lock_);
        const auto place = std::find_if(idle_.rbegin(), idle_.rend(),
                                        [size](const auto &idle) { return idle->size == size; });
        if (place == idle_.rend())
            return nullptr;
        block = std::move(*place);
        idle_.erase(std::next(place).base());
        idleBytes_ -= size;
    }
    return Wrap(std::move(block));
}

bool FrameMemory::Has(const AVBufferRef &buffer) const
{
    const KyScopedLock lock(lock_);
    return used_.contains(av_buffer_get_opaque(&buffer));
}

void FrameMemory::Release(void *opaque, std::uint8_t *)
{
    std::unique_ptr<Block> block(static_cast<Block *>(opaque));
    FrameMemory &owner = *block->owner;
    owner.Keep(std::move(block));
}

void FrameMemory::Keep(std::unique_ptr<Block> block)
{
    const KyScopedLock lock(lock_);
    used_.erase(block.get());
    usedBytes_ -= block->size;
    if (idleBytes_ + block->size > kMostIdle)
        return Free(*block);
    idleBytes_ += block->size;
    idle_.push_back(std::move(block));
}

bool FrameMemory::FreeIdle()
{
    std::vector<std::unique_ptr<Block>> blocks;
    {
        const KyScopedLock lock(lock_);
        blocks.swap(idle_);
        idleBytes_ = 0;
    }
    for (const auto &block : blocks)
        Free(*block);
    return !blocks.empty();
}

} // namespace kyh::media
