#pragma once

#include <marlet/checks/Findings.h>
#include <marlet/checks/PropertyModels.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AbstractAssetInstance;
class AudioVideoSettings;

/// What the checks of one project have in common.
struct CheckScope {
    const Project &project;
    Findings findings{};
    PropertyModels models{};
    bool hasExpressionEngine = false;
    /// The first asset of each ID.
    std::unordered_map<kytl::KyID, std::shared_ptr<AbstractAsset>> assets{};
    std::unordered_set<const AbstractAsset *> offline{};
    /// By assets.
    std::unordered_map<const AbstractAsset *, std::vector<std::shared_ptr<AbstractAssetInstance>>> uses{};

    /// In frames of whoever shows them, by asset and frame rate.
    std::map<std::pair<const AbstractAsset *, double>, std::optional<int>> lengths{};

    AbstractAsset *FindAsset(const kytl::KyID &id) const
    {
        const auto place = assets.find(id);
        return place == assets.end() ? nullptr : place->second.get();
    }
};

// The checks, in the order in which they have to run.

/// Folders and assets, without what is in compositions.
void CheckAssets(CheckScope &scope);
void CheckCompositions(CheckScope &scope);
/// Does nothing without a sequence.
void CheckSequence(CheckScope &scope);
/// Once all uses are known.
void CheckInstances(CheckScope &scope);

/// Of what shows an asset, from a frame of it on up to another one, at a frame rate.
void CheckShownFrames(CheckScope &scope, const Place &place, const AbstractAsset &asset, double rate,
                      std::int64_t start, std::int64_t end);

/// Of a composition or a sequence.
void CheckFormat(Findings &findings, const Place &place, const AudioVideoSettings &settings);

} // namespace marlet::project
