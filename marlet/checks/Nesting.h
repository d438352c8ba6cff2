#pragma once

#include <marlet/foundation/KyID.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class CompositionAsset;

/// Which compositions show one another, and which of them show themselves that way.
class Nesting
{
public:
    /// Assets by their IDs. What is not among the compositions shows nothing.
    Nesting(const std::vector<std::shared_ptr<CompositionAsset>> &compositions,
            const std::unordered_map<kytl::KyID, std::shared_ptr<AbstractAsset>> &assets);

    /// Whether what a composition shows comes to show that composition again.
    bool LeadsBack(const AbstractAsset *composition, const AbstractAsset *shown) const;

private:
    struct Walk;

    /// Compositions that show one another have one number.
    std::unordered_map<const AbstractAsset *, std::size_t> groups_;
};

} // namespace marlet::project
