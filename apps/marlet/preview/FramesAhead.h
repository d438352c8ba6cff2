#pragma once

#include "FrameRenderer.h"

#include <QImage>
#include <QSize>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace marlet::tool
{

/// Frames of a composition in their order, drawn side by side by threads that are some frames ahead. The
/// pictures are those that one renderer draws one after another.
///
/// Belongs to one thread; the project stays as it is while it lives.
class FramesAhead
{
public:
    struct Frame {
        QImage picture;
        std::string file; ///< for what the finish makes of the picture
    };
    /// What else is done to a frame on the thread that drew it.
    using Finish = std::function<void(Frame &)>;

    struct Range {
        int first;
        int last; ///< included
    };

    /// A size that is empty stands for the composition's own; 0 threads for one on each core.
    FramesAhead(const ProjectPointer &project, CompositionPointer composition, Range range, QSize size,
                Finish finish, unsigned threads = 0);
    FramesAhead(const FramesAhead &) = delete;
    FramesAhead &operator=(const FramesAhead &) = delete;
    ~FramesAhead();

    /// The next frame; waits for it. As many times as there are frames. @throws what drawing it has thrown
    Frame Next();

    /// Of the frames that were drawn, in their order. For after the last frame.
    std::vector<LeftOutLayer> LeftOut() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace marlet::tool
