#pragma once

#include <marlet/foundation/KyID.h>

#include <memory>

namespace marlet::project
{
class AbstractPlugin;
}

namespace marlet::tool
{

// The tool's plug-ins. Their IDs stand in files and never change.

inline constexpr kytl::KyID kGaussianBlurID{
    0x8e1c4a50, 0x52d7, 0x4f0b, {0x9a, 0x61, 0x1d, 0x3f, 0x70, 0xc2, 0x4e, 0x01}};
inline constexpr kytl::KyID kColorBalanceID{
    0x27b9d6e3, 0x0c48, 0x4a95, {0x8f, 0x32, 0x6e, 0x5a, 0x91, 0xb4, 0xd7, 0x02}};
inline constexpr kytl::KyID kLevelsID{
    0xf3605b1a, 0x7e24, 0x46cd, {0xb5, 0x0e, 0x82, 0xc9, 0x14, 0xa7, 0x3b, 0x03}};
inline constexpr kytl::KyID kDropShadowID{
    0x5d72e08c, 0x1b93, 0x4e6f, {0xa4, 0xd8, 0x37, 0x0b, 0xe5, 0x6c, 0x28, 0x04}};
inline constexpr kytl::KyID kDisplacementID{
    0xb04f9327, 0x68ea, 0x4d31, {0x8c, 0x75, 0xf1, 0x5e, 0x09, 0xd3, 0xa6, 0x05}};
inline constexpr kytl::KyID kCrossDissolveID{
    0x14a6c7f9, 0xd350, 0x4b82, {0x97, 0x1f, 0x40, 0xe8, 0x6b, 0x2d, 0xc5, 0x06}};
inline constexpr kytl::KyID kWipeID{
    0xc98e25b4, 0x3f07, 0x4c1d, {0xae, 0x53, 0x7d, 0x96, 0xf0, 0x18, 0xb2, 0x07}};

/// Spreads every pixel by a bell curve that ends at the radius.
std::shared_ptr<project::AbstractPlugin> MakeGaussianBlur();
/// Tints shadows, midtones and highlights each by a wheel.
std::shared_ptr<project::AbstractPlugin> MakeColorBalance();
/// Stretches the levels of each channel over a histogram.
std::shared_ptr<project::AbstractPlugin> MakeLevels();
/// A blurred and coloured copy of the picture's alpha behind the picture.
std::shared_ptr<project::AbstractPlugin> MakeDropShadow();
/// Moves every pixel by what another layer shows there.
std::shared_ptr<project::AbstractPlugin> MakeDisplacement();
/// Fades from one picture to the other.
std::shared_ptr<project::AbstractPlugin> MakeCrossDissolve();
/// Uncovers the other picture along an edge that moves over the frame, or runs round a point.
std::shared_ptr<project::AbstractPlugin> MakeWipe();

} // namespace marlet::tool
