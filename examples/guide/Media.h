#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>
#include <vector>

namespace marlet::project
{
class MediaAsset;
class Project;
} // namespace marlet::project

namespace guide
{

using namespace marlet::project;

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels; // B, G, R, A
};

Picture FirstPicture(const WideString &path);
std::shared_ptr<MediaAsset> Import(Project &project, const WideString &path);
Picture PictureAt(const MediaAsset &asset, double projectRate, int frame);

} // namespace guide
