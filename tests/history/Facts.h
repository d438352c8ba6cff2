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

struct PropertyFacts {
    std::string text;            ///< as it is saved
    std::map<int, float> values; ///< of a number, at some times

    bool operator==(const PropertyFacts &other) const = default;
};

/// An object of a project as its getters tell it, without what it holds.
struct ObjectFacts {
    const void *address = nullptr;
    std::string holder; ///< the key of the object that holds it; empty for the project
    std::map<Aspect, std::string> texts;
    std::map<std::string, PropertyFacts> properties;
};

/// All objects of a project by kind and ID.
using FactsByKey = std::map<std::string, ObjectFacts>;

std::string KeyOf(ObjectKind kind, const kytl::KyID &id);
FactsByKey FactsOf(const Project &project);

} // namespace marlet::test
