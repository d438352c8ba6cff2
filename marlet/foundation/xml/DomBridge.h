#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;

// Between the file's own form and Qt's DOM, for the interfaces that hand one to a host or a plug-in. A
// document is always a QDomDocument, a node a QDomElement that stands in it.

/// Writes the element, with all below it, into the writer's open element. Its attributes are sorted by name,
/// since Qt keeps them in no order.
/// @throws XmlParseException "Nesting too deep"
void WriteDom(XmlWriter &writer, const void *element);

/// The same as a stand-alone text.
WideString XmlFromDom(const void *element);

/// Appends an element, with all below it, to the parent.
void AppendXmlToDom(const XmlCursor &element, void *document, void *parent);

/// The same for the root element of a text.
void AppendXmlToDom(const WideString &xml, void *document, void *parent);

} // namespace marlet::project
