#pragma once

#include <marlet/exchange/otio/OtioSchema.h>
#include <marlet/foundation/Strings.h>

#include <map>
#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class Project;
struct ExchangeOptions;

/// The media reference that stands for an asset, null for none; media and images by their files, solids as
/// generators. Nothing stands for a composition: its reference is a missing one with its name.
Json ReferenceTo(const AbstractAsset *asset, const OtioClock &clock, double rate, const WideString &folder);

/// What a reference names, to tell whether another program has changed it; empty where it names no file.
NarrowString SourceOf(const Json &reference);

/// The file of an asset; empty if it has none.
WideString FileOf(const AbstractAsset &asset);

/// The assets of a project, and those that come to it for references of clips.
class OtioAssets
{
public:
    OtioAssets(Project &project, const ExchangeOptions &options, double rate);

    /// Says that the asset of a clip is going to be asked for, so that all files are opened at once.
    void Expect(const Json &clip);
    /// The asset that a clip's reference names; one that is offline where it names nothing that can be used.
    std::shared_ptr<AbstractAsset> AssetFor(const Json &clip);

private:
    using AssetPointer = std::shared_ptr<AbstractAsset>;

    void Open();
    void Add(const NarrowString &key, const AssetPointer &asset, const NarrowString &name);
    AssetPointer Made(const Json &clip, const Json &reference) const;

    Project &project_;
    const ExchangeOptions &options_;
    double rate_;
    std::map<NarrowString, AssetPointer> assets_; ///< by what references say
    std::map<NarrowString, const Json *> expected_;
};

} // namespace marlet::project
