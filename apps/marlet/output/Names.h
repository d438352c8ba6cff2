#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/layers/LayerTypes.h>
#include <marlet/platform/media/KyMediaTypes.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/tracking/Tracker.h>

#include <string>

namespace marlet::tool
{

// What the tool calls the values of enumerations. One that has no name comes out as its number.

std::string AssetTypeName(project::AssetType type);
std::string ControlTypeName(project::AbstractPluginUITreeNode::NodeType type);
std::string LayerTypeName(project::LayerType type);
std::string DimensionsName(project::LayerDimensions dimensions);
std::string FieldsName(project::VideoFields fields);
std::string FileStatusName(project::ImageAsset::FileStatus status);
std::string MediaStatusName(project::MediaAsset::Status status);
std::string VideoCodecName(kyh::media::KyVideoCodec codec);
std::string AudioCodecName(kyh::media::KyAudioCodec codec);
std::string TrackerTypeName(project::Tracker::TrackerType type);
std::string TrackerMethodName(project::Tracker::TrackerMethod method);
std::string ChannelOrderName(project::KyChannelOrder order);

/// "1.2.0.0"
std::string VersionText(const project::AbstractPlugin::VersionInfo &version);

} // namespace marlet::tool
