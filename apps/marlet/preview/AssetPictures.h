#pragma once

#include "document/Document.h"

#include <QImage>

#include <mutex>
#include <unordered_map>

namespace marlet::project
{
class AbstractAsset;
class ImageAsset;
class MediaAsset;
class SolidAsset;
} // namespace marlet::project

namespace marlet::tool
{

/// The pictures of a project's files and solids, premultiplied. Stills are kept. Needs a QGuiApplication for
/// the labels of what cannot be shown. For any number of threads.
class AssetPictures
{
public:
    /// A media frame at a rate, in frames per second; null for a frame that the clip does not have. A file
    /// that cannot be used, and a frame that is damaged, get a placeholder with the file's name.
    static QImage FrameOf(project::MediaAsset &media, double frameRate, int frame);
    QImage PictureOf(project::ImageAsset &image);
    static QImage PictureOf(const project::SolidAsset &solid);
    /// A box with a label, for what cannot be shown; as large as what is offline if it has no size.
    static QImage Placeholder(const std::string &label, QSize size = {});

private:
    std::mutex mutex_;                                               ///< held while a still is read
    std::unordered_map<const project::ImageAsset *, QImage> stills_; ///< two may have one ID
};

} // namespace marlet::tool
