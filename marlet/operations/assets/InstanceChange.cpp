#include <marlet/operations/assets/InstanceChange.h>

#include <marlet/history/Edit.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AbstractAssetInstance.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using Asset = std::shared_ptr<AbstractAsset>;
using Instance = std::weak_ptr<AbstractAssetInstance>;

bool IsSame(const Instance &a, const Instance &b)
{
    return !a.owner_before(b) && !b.owner_before(a);
}

/// Where an instance stands, or would stand.
std::size_t IndexOf(const AbstractAsset::InstanceList &instances, const Instance &instance)
{
    const auto place = std::find_if(instances.begin(), instances.end(),
                                    [&](const Instance &other) { return IsSame(other, instance); });
    return static_cast<std::size_t>(place - instances.begin());
}

class InstancePart : public EditedPart
{
public:
    InstancePart(Asset asset, Instance instance, std::size_t index, bool isListed)
        : EditedPart({}),
          asset_(std::move(asset)),
          instance_(std::move(instance)),
          index_(index),
          isListed_(isListed)
    {
    }

    /// The edit may have changed the rest of the list, too, with all of the asset announced.
    void Exchange() override
    {
        AbstractAsset::InstanceList &instances = asset_->Instances();
        if (isListed_) {
            if (index_ >= instances.size() || !IsSame(instances[index_], instance_))
                index_ = IndexOf(instances, instance_);
            wasThere_ = index_ < instances.size();
            if (wasThere_)
                instances.erase(instances.begin() + static_cast<std::ptrdiff_t>(index_));
        } else if (wasThere_) {
            const std::size_t index = std::min(index_, instances.size());
            instances.insert(instances.begin() + static_cast<std::ptrdiff_t>(index), instance_);
        }
        isListed_ = !isListed_;
    }

    void Describe(ChangeList &changes) const override
    {
        changes.Of(ObjectKind::Asset, asset_->ID()).aspects |= Aspect::Links;
    }

    std::size_t Size() const override { return sizeof *this; }

private:
    Asset asset_;
    Instance instance_;
    std::size_t index_;
    bool isListed_;        ///< once the change is made
    bool wasThere_ = true; ///< when it was last to be taken out
};

} // namespace

void AddInstance(Edit &edit, const Asset &asset, const std::shared_ptr<AbstractAssetInstance> &instance)
{
    AbstractAsset::InstanceList &instances = asset->Instances();
    edit.Touch(std::make_unique<InstancePart>(asset, instance, instances.size(), true));
    instances.Add(instance);
}

void RemoveInstance(Edit &edit, const Asset &asset, const std::shared_ptr<AbstractAssetInstance> &instance)
{
    AbstractAsset::InstanceList &instances = asset->Instances();
    const std::size_t index = IndexOf(instances, instance);
    if (index == instances.size())
        return;
    edit.Touch(std::make_unique<InstancePart>(asset, instance, index, false));
    instances.erase(instances.begin() + static_cast<std::ptrdiff_t>(index));
}

} // namespace marlet::project
