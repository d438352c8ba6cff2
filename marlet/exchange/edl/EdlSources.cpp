#include <marlet/exchange/edl/EdlSources.h>

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/TimeCode.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

constexpr char kNoReel[] = "AX";

/// Whether a reel says no more than the name of the file, by which it can be made again.
bool IsMadeOf(const NarrowString &reel, const WideString &path)
{
    const std::size_t slash = path.find_last_of(u'/') + 1;
    const NarrowString made = EdlReelName(ToUtf8(path.substr(slash, path.find_last_of(u'.') - slash)));
    // The end may number reels that would be one.
    return reel == kNoReel || reel.substr(0, 4) == made.substr(0, 4);
}

} // namespace

EdlSources::EdlSources(const std::shared_ptr<Project> &project, const EdlList &list,
                       const ExchangeOptions &options)
    : project_(project), options_(options), frameRate_(list.time.frameRate)
{
    for (const EdlEdit &edit : list.edits) {
        if (!edit.clip.empty() && !edit.file.empty())
            filesOfClips_.emplace(edit.clip, edit.file);
        const NarrowString &path = edit.file.empty() ? edit.clip : edit.file;
        if (!path.empty() && edit.reel != kNoReel)
            pathsOfReels_.emplace(edit.reel, path);
    }
    Gather(list);
    Open();
    for (const WideString &path : paths_)
        GuessFirstFrame(sources_.at(path), list.time);
}

WideString EdlSources::PathOf(const EdlEdit &edit) const
{
    NarrowString path = edit.file;
    if (const auto file = filesOfClips_.find(edit.clip); path.empty() && file != filesOfClips_.end())
        path = file->second;
    if (path.empty())
        path = edit.clip;
    if (const auto known = pathsOfReels_.find(edit.reel); path.empty() && known != pathsOfReels_.end())
        path = known->second;
    return MeantPath(options_, FromUtf8(path.empty() ? edit.reel : path));
}

void EdlSources::Gather(const EdlList &list)
{
    for (const EdlEdit &edit : list.edits) {
        if (edit.IsBlack())
            continue;
        const WideString path = PathOf(edit);
        const double count = (edit.recordOut - edit.recordIn) * edit.speed;
        const int end = Saturate(std::int64_t{edit.sourceIn} + Truncate<int>(std::max(count, 0.0)));
        const auto [known, isNew] = sources_.try_emplace(path, Source{{}, edit.sourceIn, end, 0, &edit});
        known->second.firstUsed = std::min(known->second.firstUsed, edit.sourceIn);
        known->second.endUsed = std::max(known->second.endUsed, end);
        if (isNew)
            paths_.push_back(path);
    }
}

void EdlSources::Open()
{
    std::vector<WideString> media;
    for (const WideString &path : paths_) {
        const auto image = ImageAsset::Create(path);
        if (image->Status() == ImageAsset::FileStatus::Usable)
            sources_.at(path).asset = image;
        else
            media.push_back(path);
    }
    const auto opened = project_->Media().CreateMediaAssets(media, options_.load.progress);
    for (std::size_t i = 0; i < media.size(); ++i)
        sources_.at(media[i]).asset = opened[i];
    for (const WideString &path : paths_) {
        const Source &source = sources_.at(path);
        AddAsset(project_, source.asset);
        if (source.asset->IsOffline())
            Tell(options_, LoadEntry::Severity::Warning, "there is no file " + ToUtf8(path),
                 source.edit->line, {source.asset->ID()});
        if (!IsMadeOf(source.edit->reel, path))
            Tell(options_, LoadEntry::Severity::Loss,
                 "the reel " + source.edit->reel + " of " + ToUtf8(path) + " has no place in a project",
                 source.edit->line, {source.asset->ID()});
    }
}

void EdlSources::GuessFirstFrame(Source &source, const EdlTime &time) const
{
    const auto length = AssetLength(*source.asset, frameRate_);
    if (!length || source.endUsed <= *length)
        return;
    const int hour = TimeCode{1, 0, 0, 0, time.CountingRate()}.ToFrame();
    source.firstFrame = source.firstUsed / hour * hour;
    if (source.endUsed - source.firstFrame > *length && source.endUsed - source.firstUsed <= *length)
        source.firstFrame = source.firstUsed;
    Tell(options_, LoadEntry::Severity::Warning,
         "the first frame of " + ToUtf8(source.asset->Name()) + " is taken to have the time code " +
             time.Text(source.firstFrame),
         source.edit->line, {source.asset->ID()});
}

std::shared_ptr<AbstractAsset> EdlSources::AssetOf(const EdlEdit &edit) const
{
    return edit.IsBlack() ? nullptr : SourceOf(edit).asset;
}

int EdlSources::AssetFrame(const EdlEdit &edit, int sourceFrame) const
{
    return sourceFrame - SourceOf(edit).firstFrame;
}

bool EdlSources::HasFrames(const EdlEdit &edit, int first, double count) const
{
    const auto length = AssetLength(*SourceOf(edit).asset, frameRate_);
    return first >= 0 && (!length || first + std::floor(count) <= *length);
}

} // namespace marlet::project
