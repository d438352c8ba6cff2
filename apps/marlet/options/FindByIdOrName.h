#pragma once

#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <optional>
#include <string>
#include <vector>

namespace marlet::tool
{

inline std::optional<kytl::KyID> ParseID(const std::string &text)
{
    try {
        return kytl::KyID::FromString(text);
    } catch (const std::runtime_error &) {
        return std::nullopt;
    }
}

/// The only one of the objects whose ID or name is the text; an ID goes before a name. @throws Failure
template <class Objects>
typename Objects::value_type FindByIdOrName(const Objects &objects, const std::string &kind,
                                            const std::string &text)
{
    const std::optional<kytl::KyID> id = ParseID(text);
    const project::WideString name = project::FromUtf8(text);
    typename Objects::value_type found;
    int count = 0;
    for (const auto &object : objects) {
        if (id == object->ID())
            return object;
        if (object->Name() == name && ++count == 1)
            found = object;
    }
    if (count == 0) {
        std::vector<std::string> names;
        for (const auto &object : objects)
            names.push_back(project::ToUtf8(object->Name()));
        throw NoSuch(kind, text, names);
    }
    if (count > 1)
        throw Failure("There are " + std::to_string(count) + " " + kind + "s of the name \"" + OneLine(text) +
                      "\": give the ID");
    return found;
}

} // namespace marlet::tool
