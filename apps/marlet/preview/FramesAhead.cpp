#include "FramesAhead.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace marlet::tool
{

struct FramesAhead::State {
    /// A frame that is being drawn, or waits to be fetched.
    struct Place {
        Frame frame;
        std::exception_ptr failure;
        bool isReady = false;
    };

    CompositionPointer composition;
    QSize size;
    Finish finish;
    int next; ///< to be drawn
    int last;
    std::size_t mostPlaces;

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::shared_ptr<Place>> places; ///< from the one that is fetched next on
    bool isEnding = false;
    std::vector<std::unique_ptr<FrameRenderer>> renderers;
    std::vector<std::thread> threads;

    /// Takes the next frame to draw when there is room for it; null at the end.
    std::pair<std::shared_ptr<Place>, int> Take()
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isEnding || next > last || places.size() < mostPlaces; });
        if (isEnding || next > last)
            return {};
        places.push_back(std::make_shared<Place>());
        return {places.back(), next++};
    }

    /// Waits for the threads, which finish the frames that they are at.
    void End()
    {
        {
            const std::lock_guard lock(mutex);
            isEnding = true;
        }
        changed.notify_all();
        for (std::thread &thread : threads)
            thread.join();
    }

    void Work(FrameRenderer &renderer)
    {
        for (auto [place, number] = Take(); place; std::tie(place, number) = Take()) {
            try {
                place->frame.picture = renderer.Render(composition, number, size);
                finish(place->frame);
            } catch (...) {
                place->failure = std::current_exception();
            }
            const std::lock_guard lock(mutex);
            place->isReady = true;
            changed.notify_all();
        }
    }
};

FramesAhead::FramesAhead(const ProjectPointer &project, CompositionPointer composition, Range range,
                         QSize size, Finish finish, unsigned threads)
    : state_(std::make_unique<State>())
{
    const unsigned cores = threads > 0 ? threads : std::max(1u, std::thread::hardware_concurrency());
    const unsigned count = std::min(cores, static_cast<unsigned>(std::max(1, range.last - range.first + 1)));
    state_->composition = std::move(composition);
    state_->size = size;
    state_->finish = std::move(finish);
    state_->next = range.first;
    state_->last = range.last;
    state_->mostPlaces = 2 * static_cast<std::size_t>(count);
    const auto shared = std::make_shared<SharedPictures>();
    for (unsigned i = 0; i < count; ++i)
        state_->renderers.push_back(std::make_unique<FrameRenderer>(project, shared));
    try {
        for (const auto &renderer : state_->renderers)
            state_->threads.emplace_back(
                [state = state_.get(), &drawing = *renderer] { state->Work(drawing); });
    } catch (...) {
        // Of a constructor that throws the destructor does not run, and a thread has to be joined.
        state_->End();
        throw;
    }
}

FramesAhead::~FramesAhead()
{
    state_->End();
}

FramesAhead::Frame FramesAhead::Next()
{
    std::unique_lock lock(state_->mutex);
    state_->changed.wait(lock, [this] { return !state_->places.empty() && state_->places.front()->isReady; });
    const std::shared_ptr<State::Place> place = state_->places.front();
    state_->places.pop_front();
    state_->changed.notify_all();
    if (place->failure)
        std::rethrow_exception(place->failure);
    return std::move(place->frame);
}

std::vector<LeftOutLayer> FramesAhead::LeftOut() const
{
    std::vector<LeftOutLayer> all;
    for (const auto &renderer : state_->renderers)
        all.insert(all.end(), renderer->LeftOut().begin(), renderer->LeftOut().end());
    std::stable_sort(all.begin(), all.end(),
                     [](const LeftOutLayer &a, const LeftOutLayer &b) { return a.frame < b.frame; });
    // Each renderer tells of a layer once, the first to do so counts.
    std::vector<LeftOutLayer> first;
    std::unordered_set<const project::AbstractLayer *> told;
    for (LeftOutLayer &layer : all)
        if (told.insert(layer.layer).second)
            first.push_back(std::move(layer));
    return first;
}

} // namespace marlet::tool
