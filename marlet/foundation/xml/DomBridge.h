#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

// Between the file's own form and Qt's DOM, for the interfaces that hand one to a host or a plug-in. A
// document is always a QDomDocument, a node a QDomElement that stands in it.

/// The element as a stand-alone text, its attributes sorted by name, since Qt keeps them in no order.
/// @throws XmlParseException "Nesting too deep"
WideString XmlFromDom(const void *element);

/// Appends the root element of a text, with all below it, to the parent.
void AppendXmlToDom(const WideString &xml, void *document, void *parent);

} // namespace marlet::project
