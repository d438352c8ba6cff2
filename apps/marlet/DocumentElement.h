#pragma once

#include <marlet/foundation/Strings.h>

#include <string>
#include <utility>
#include <vector>

namespace marlet::tool
{

/// An element of a project's text, in UTF-8.
struct DocumentElement {
    std::string tag;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text; ///< of an element without children
    std::vector<DocumentElement> children;

    /// Empty if there is none.
    std::string Attribute(const std::string &name) const;
    const DocumentElement *Child(const std::string &childTag) const;
    std::string ChildText(const std::string &childTag) const;
};

/// @throws Failure for a text that is no XML
DocumentElement ParseDocument(const project::WideString &xml);

} // namespace marlet::tool
