#include <bench/support/HeapCounter.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <malloc.h>

namespace
{

std::atomic<bool> counting{false};
std::atomic<std::size_t> allocations{0};
std::atomic<std::ptrdiff_t> held{0};
std::atomic<std::ptrdiff_t> peak{0};

void *Taken(void *block)
{
    if (!counting.load(std::memory_order_relaxed) || !block)
        return block;
    ++allocations;
    const std::ptrdiff_t now = held += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    std::ptrdiff_t highest = peak;
    while (now > highest && !peak.compare_exchange_weak(highest, now)) {
    }
    return block;
}

void Given(void *block)
{
    if (counting.load(std::memory_order_relaxed) && block)
        held -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
}

} // namespace

// Replacing these is what the GNU C library provides for; it exports its own under the second names.
extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *block);

void *malloc(std::size_t size) noexcept
{
    return Taken(__libc_malloc(size));
}

void *calloc(std::size_t count, std::size_t size) noexcept
{
    return Taken(__libc_calloc(count, size));
}

void *realloc(void *block, std::size_t size) noexcept
{
    Given(block);
    return Taken(__libc_realloc(block, size));
}

void *memalign(std::size_t alignment, std::size_t size) noexcept
{
    return Taken(__libc_memalign(alignment, size));
}

void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return memalign(alignment, size);
}

int posix_memalign(void **block, std::size_t alignment, std::size_t size) noexcept
{
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

void free(void *block) noexcept
{
    Given(block);
    __libc_free(block);
}
}

namespace bench
{

HeapCounter::HeapCounter()
{
    allocations = 0;
    held = 0;
    peak = 0;
    counting = true;
}

HeapCounter::~HeapCounter()
{
    counting = false;
}

std::size_t HeapCounter::Allocations() const
{
    return allocations;
}

std::size_t HeapCounter::PeakBytes() const
{
    return static_cast<std::size_t>(peak.load());
}

} // namespace bench
