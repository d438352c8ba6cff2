#pragma once

#include <marlet/checks/Findings.h>

#include <functional>

namespace marlet::project
{

class PropertyManager;

/// Hands out the properties to be changed.
using PropertyAccess = std::function<PropertyManager &()>;

/// What the properties of one object are checked against.
struct PropertyRules {
    /// The types as the class makes them; null for those of the defaults.
    const PropertyManager *model = nullptr;
    /// A host's engine may evaluate expressions.
    bool hasExpressionEngine = false;
};

/// Without access there are no remedies.
void CheckProperties(Findings &findings, const Place &place, const PropertyManager &properties,
                     const PropertyRules &rules, const PropertyAccess &access = {});

} // namespace marlet::project
