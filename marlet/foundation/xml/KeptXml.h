#pragma once

#include <marlet/foundation/KyID.h>
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
    struct Element {
        unsigned int inFront; ///< how many children stand in front that are written by themselves
        NarrowString source;
    };

    std::vector<NarrowString> attributes; ///< each with its name, "=" and its value in quotes
    std::vector<Element> elements;        ///< in order
    /// The IDs of the children that are written by themselves, null for those that have none. Empty if no
    /// kept element stands behind one that has an ID, by which its place is found when others come and go.
    std::vector<kytl::KyID> written;
    /// The children that have something, by their tag and what tells them apart: the attribute ID or Time,
    /// or, if they have none, how many of that tag stand in front.
    std::map<std::pair<NarrowString, NarrowString>, KeptPlace> children;

    bool IsEmpty() const { return attributes.empty() && elements.empty() && children.empty(); }
    /// Whether the place of an element is behind an object, wherever that has gone.
    bool IsBehindObject(const Element &element) const
    {
        return element.inFront > 0 && element.inFront <= written.size() &&
               !written[element.inFront - 1].IsNull();
    }
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
