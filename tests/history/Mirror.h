#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/history/ChangeNotice.h>

#include <map>
#include <string>

namespace marlet::project
{
class Project;
} // namespace marlet::project

namespace marlet::test
{

using namespace marlet::project;

/// An object of a project as its getters tell it, without what it holds.
struct ObjectFacts {
    const void *address = nullptr;
    std::string text;
    std::string holder; ///< the key of the object that holds it; empty for the project

    bool operator==(const ObjectFacts &other) const = default;
};

/// All objects of a project by kind and ID.
using FactsByKey = std::map<std::string, ObjectFacts>;

std::string KeyOf(ObjectKind kind, const kytl::KyID &id);
FactsByKey FactsOf(const Project &project);

/// What a panel would know of a project that reads again only what notices name.
class Mirror
{
public:
    explicit Mirror(const Project &project) : facts_(FactsOf(project)) {}

    void Take(const Project &project, const ChangeNotice &notice);
    /// The first object that the mirror has otherwise, or nothing.
    std::string DifferenceTo(const Project &project) const;

private:
    FactsByKey facts_;
};

} // namespace marlet::test
