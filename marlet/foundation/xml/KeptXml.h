#pragma once

#include <marlet/foundation/Strings.h>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace marlet::project
{

class XmlCursor;

/// What is kept below one element that nobody knows, as it stood in the text, and where.
struct KeptPlace {
    std::vector<NarrowString> attributes; ///< each with its name, "=" and its value in quotes
    /// Elements, by the count of children in front of them that are written by themselves. In order.
    std::vector<std::pair<unsigned int, NarrowString>> elements;
    /// The children that have something, by their tag and how many of that tag stand in front.
    std::map<std::pair<NarrowString, unsigned int>, KeptPlace> children;

    bool IsEmpty() const { return attributes.empty() && elements.empty() && children.empty(); }
};

/// The elements and attributes of an object's element that this library does not know, so that they are
/// written again beside their neighbours. Copies share them.
class KeptXml
{
public:
    KeptXml() = default;
    /// Takes what the reading of an element has left, if the load that goes on keeps it. What objects below
    /// have taken stays theirs. Comes last in what reads the element.
    explicit KeptXml(const XmlCursor &element);

    /// Null if there is nothing.
    const KeptPlace *Root() const { return root_.get(); }

private:
    std::shared_ptr<const KeptPlace> root_;
};

} // namespace marlet::project
