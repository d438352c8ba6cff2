#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace marlet::project
{

/// Does pieces of work on all cores, ahead of a thread that waits for one after another. Belongs to that
/// thread.
class WorkAhead
{
public:
    using Work = std::function<void(std::size_t)>;

    /// Does `work(i)` once for each number below the count, on any thread. It must not throw.
    WorkAhead(std::size_t count, Work work);
    WorkAhead(const WorkAhead &) = delete;
    WorkAhead &operator=(const WorkAhead &) = delete;
    ~WorkAhead();

    /// Returns when that piece is done.
    void Await(std::size_t piece);
    /// Begins no other piece, and returns when those that had begun are done. Nothing is awaited afterwards.
    void Stop();

private:
    void StartThreads();
    void RunPieces();

    const Work work_;
    std::mutex lock_; ///< of the numbers and what is done
    std::condition_variable isDoneChanged_;
    std::size_t next_ = 0;
    std::size_t end_;
    std::vector<bool> isDone_;
    std::vector<std::thread> threads_;
};

} // namespace marlet::project
