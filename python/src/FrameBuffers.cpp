#include "FrameBuffers.h"

#include <mutex>
#include <utility>
#include <vector>

namespace marlet::python
{

namespace
{

constexpr std::size_t kMostKept = std::size_t{64} << 20;

struct Pool {
    std::mutex mutex;
    std::vector<std::pair<std::size_t, std::unique_ptr<unsigned char[]>>> buffers;
    std::size_t bytes = 0;
};

/// Never destroyed, as arrays may go after everything else.
Pool &ThePool()
{
    static Pool *const pool = new Pool;
    return *pool;
}

} // namespace

FrameBuffer::FrameBuffer(std::size_t size) : size_(size)
{
    Pool &pool = ThePool();
    {
        const std::lock_guard lock(pool.mutex);
        for (auto &[kept, buffer] : pool.buffers)
            if (kept == size) {
                bytes_ = std::move(buffer);
                std::swap(pool.buffers.back().first, kept);
                std::swap(pool.buffers.back().second, buffer);
                pool.buffers.pop_back();
                pool.bytes -= size;
                return;
            }
    }
    bytes_.reset(new unsigned char[size]);
}

FrameBuffer::~FrameBuffer()
{
    Pool &pool = ThePool();
    const std::lock_guard lock(pool.mutex);
    if (pool.bytes + size_ > kMostKept)
        return;
    pool.buffers.emplace_back(size_, std::move(bytes_));
    pool.bytes += size_;
}

} // namespace marlet::python
