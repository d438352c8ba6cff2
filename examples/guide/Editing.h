#pragma once

#include <marlet/history/EditHistory.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <memory>
#include <set>
#include <string>

namespace guide
{

using namespace marlet::project;

/// What a panel of layers shows, brought up to date by notices alone.
class LayerPanel : public ChangeObserver
{
public:
    void Changed(const ChangeNotice &notice) override;

    bool NeedsRows() const { return needsRows_; }
    const std::set<std::string> &LayersToDraw() const { return layersToDraw_; }
    int FirstStaleFrame() const { return firstStaleFrame_; }

private:
    bool needsRows_ = false;
    std::set<std::string> layersToDraw_;
    int firstStaleFrame_ = -1;
};

void Rename(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractLayer> &layer,
            const WideString &name);
void DragOpacity(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractLayer> &layer,
                 float opacity);
/// Returns why not, or nothing.
std::string SplitAll(const std::shared_ptr<Project> &project,
                     const std::shared_ptr<CompositionAsset> &composition, int frame);

} // namespace guide
