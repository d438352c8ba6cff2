#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/operations/layers/LayerClipboard.h>

#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace marlet::project
{

class AbstractAsset;
class Edit;

/// What was copied into other projects, by the IDs of the sources.
using BroughtAssets = std::unordered_multimap<kytl::KyID, std::weak_ptr<AbstractAsset>>;

/// Makes copies of what one project has an own part of the one that is edited.
class AssetTransfer
{
public:
    AssetTransfer(Edit &edit, std::shared_ptr<Project> source, const PasteOptions &options,
                  BroughtAssets &brought);

    /// A new layer, which is in no composition's list yet, with what it shows. It may become another object.
    /// @throws OperationException if its asset or a plug-in is missing
    void Adopt(std::shared_ptr<AbstractLayer> &layer);

private:
    using AssetPointer = std::shared_ptr<AbstractAsset>;

    AssetPointer Bring(const AssetPointer &asset);
    AssetPointer FindBrought(const AbstractAsset &asset) const;
    AssetPointer FindAlike(const AbstractAsset &asset) const;
    AssetPointer Copy(const AbstractAsset &asset) const;
    void AdoptEffects(AbstractLayer &layer) const;

    Edit &edit_;
    std::shared_ptr<Project> source_;
    const PasteOptions &options_;
    BroughtAssets &brought_;
    std::unordered_set<const AbstractAsset *> open_; ///< those whose layers are being adopted
};

} // namespace marlet::project
