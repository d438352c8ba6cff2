#include <marlet/project/MediaLoad.h>

#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/project/MediaProgress.h>

#include <QChar>

#include <algorithm>
#include <utility>

namespace marlet::project
{

int MediaFileEntry::State() const
{
    return file ? file->State() : code;
}

WideString KeyOf(WideString path)
{
    std::ranges::transform(path, path.begin(), [](char16_t unit) { return QChar(unit).toLower().unicode(); });
    return path;
}

MediaFileEntry OpenMedia(const MediaRequest &request, const kyh::media::MediaResourcesPtr &resources)
{
    MediaFileEntry opened;
    opened.code = request.frameRate
                      ? kyh::media::CreateImageSequence(request.path.c_str(), *request.frameRate, resources,
                                                        &opened.file)
                      : kyh::media::CreateMediaFile(request.path.c_str(), resources, &opened.file);
    return opened;
}

std::vector<MediaLoad::Item> MediaLoad::ItemsOf(std::vector<MediaRequest> requests)
{
    std::vector<Item> items(requests.size());
    for (std::size_t number = 0; number < items.size(); ++number)
        items[number].request = std::move(requests[number]);
    return items;
}

MediaLoad::MediaLoad(std::vector<MediaRequest> requests, kyh::media::MediaResourcesPtr resources,
                     MediaProgress *progress)
    : resources_(std::move(resources)),
      progress_(progress),
      items_(ItemsOf(std::move(requests))),
      opening_(items_.size(), [this](std::size_t number) {
          items_[number].opened = OpenMedia(items_[number].request, resources_);
      })
{
    for (std::size_t number = 0; number < items_.size(); ++number)
        itemsByKey_.emplace(KeyOf(items_[number].request.path), number);
}

MediaLoad::~MediaLoad()
{
    opening_.Stop();
    ReleaseUntaken();
}

MediaFileEntry MediaLoad::Take(const MediaRequest &request)
{
    untold_ = nullptr;
    const auto found = itemsByKey_.find(KeyOf(request.path));
    Item *item = found == itemsByKey_.end() ? nullptr : &items_[found->second];
    if (item && item->request != request)
        item = nullptr;
    if (item && item->isTaken && !item->opened.file)
        return item->opened;
    if (isCancelled_)
        return {kyh::media::CreateUnopenedFile(request.path.c_str(), request.frameRate, resources_),
                kyh::media::kAsleep};
    if (!item || item->isTaken)
        return OpenMedia(request, resources_);
    opening_.Await(found->second);
    item->isTaken = true;
    untold_ = item;
    return item->opened;
}

void MediaLoad::Tell()
{
    const Item *item = std::exchange(untold_, nullptr);
    if (!item || !progress_)
        return;
    if (progress_->OnFile(item->request.path, ++told_, static_cast<int>(items_.size())))
        return;
    isCancelled_ = true;
    opening_.Stop();
    ReleaseUntaken();
}

void MediaLoad::ReleaseUntaken()
{
    for (Item &item : items_)
        if (!item.isTaken)
            kyh::media::KyMediaFileRelease(std::exchange(item.opened.file, nullptr));
}

} // namespace marlet::project
