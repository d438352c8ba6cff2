#pragma once

#include "Facts.h"

namespace marlet::test
{

/// What a panel would know of a project that reads again only what notices name: of an object that is named
/// what the notice says of it, of a property its values within the times.
class Mirror
{
public:
    explicit Mirror(const Project &project) : facts_(FactsOf(project)) {}

    void Take(const Project &project, const ChangeNotice &notice);
    /// The first object that the mirror has otherwise, or nothing.
    std::string DifferenceTo(const Project &project) const;

private:
    void Read(const ObjectChange &change, const ObjectFacts &live);

    FactsByKey facts_;
};

} // namespace marlet::test
