#pragma once

#include <marlet/platform/media/contents/IndexFolder.h>
#include <marlet/platform/media/decoding/FrameCache.h>
#include <marlet/platform/media/decoding/LiveDecoders.h>
#include <marlet/platform/media/decoding/Scalers.h>
#include <marlet/platform/media/files/OpenFiles.h>

#include <cstddef>
#include <memory>
#include <optional>

namespace kyh::media
{

class KyAbstractMediaFile;

/// What media files share: the frames that are kept, the decoders and scalers that live, the files that are
/// open, and the folder in which what was learnt of files is kept. Each file holds on to its resources. Any
/// number of threads may use them; no lock in here is held while a file is read or a frame decoded.
class MediaResources
{
public:
    FrameCache &Frames() { return frames_; }
    LiveDecoders &Decoders() { return decoders_; }
    media::Scalers &Scalers() { return scalers_; }
    const OpenFilesPtr &Files() { return files_; }
    IndexFolder &Index() { return index_; }

    /// Bytes of memory for what was decoded and for decoders that nobody reads through. 0 keeps neither.
    void SetBudget(std::size_t bytes)
    {
        decoders_.CloseBeyond(bytes);
        frames_.SetBudget(bytes);
    }

private:
    // Frames go last: what decodes and what is open lets go of them.
    FrameCache frames_;
    LiveDecoders decoders_;
    media::Scalers scalers_;
    OpenFilesPtr files_ = std::make_shared<OpenFiles>(); // which each source of a file holds on to
    IndexFolder index_;
};

using MediaResourcesPtr = std::shared_ptr<MediaResources>;

/// Those of files that are opened by themselves, for the whole process.
const MediaResourcesPtr &CommonResources();

// As KyMediaFileCreate and KyImageSequenceCreate, with resources that the caller chooses. All of these files
// are released by KyMediaFileRelease.

int CreateMediaFile(const char16_t *path, const MediaResourcesPtr &resources, KyAbstractMediaFile **file);
int CreateImageSequence(const char16_t *path, double frameRate, const MediaResourcesPtr &resources,
                        KyAbstractMediaFile **file);
/// Opens nothing: the file sleeps without streams, and its State is kAsleep, until Wake opens it. With a
/// frame rate it is an image sequence. Throws nothing but std::bad_alloc.
KyAbstractMediaFile *CreateUnopenedFile(const char16_t *path, std::optional<double> frameRate,
                                        const MediaResourcesPtr &resources);

} // namespace kyh::media
