#include <marlet/project/WorkAhead.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace marlet::project
{

WorkAhead::WorkAhead(std::size_t count, Work work) : work_(std::move(work)), end_(count), isDone_(count)
{
    // One piece is waited for anyway.
    if (count > 1)
        StartThreads();
}

WorkAhead::~WorkAhead()
{
    Stop();
}

void WorkAhead::StartThreads()
{
    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    threads_.reserve(cores);
    try {
        while (threads_.size() < std::min(cores, isDone_.size()))
            threads_.emplace_back([this] { RunPieces(); });
    } catch (const std::exception &) {
        // Those that there are do it all, or else the one that waits.
    }
}

void WorkAhead::RunPieces()
{
    std::unique_lock hold(lock_);
    while (next_ < end_) {
        const std::size_t piece = next_++;
        hold.unlock();
        work_(piece);
        hold.lock();
        isDone_[piece] = true;
        isDoneChanged_.notify_all();
    }
}

void WorkAhead::Await(std::size_t piece)
{
    std::unique_lock hold(lock_);
    if (!threads_.empty()) {
        isDoneChanged_.wait(hold, [&] { return isDone_[piece]; });
        return;
    }
    hold.unlock();
    if (!isDone_[piece])
        work_(piece);
    isDone_[piece] = true;
}

void WorkAhead::Stop()
{
    {
        const std::lock_guard hold(lock_);
        end_ = 0;
    }
    for (std::thread &thread : threads_)
        thread.join();
    threads_.clear();
}

} // namespace marlet::project
