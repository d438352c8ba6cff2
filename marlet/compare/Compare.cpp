#include <marlet/compare/Compare.h>

#include <marlet/compare/CompareElements.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

NarrowString WholeText(const WideString &text)
{
    NarrowString utf8 = ToUtf8(text);
    const XmlScan scan = ScanXml(utf8);
    if (scan.fault)
        throw XmlParseException("The text is not well-formed: " + scan.fault->what);
    if (scan.hasDocumentType)
        throw XmlParseException("The text declares a document type");
    if (scan.tooDeep)
        throw XmlParseException("Nesting too deep");
    return utf8;
}

std::vector<Difference> Compare(const Project &before, const Project &after)
{
    const DocumentText old(before.SerializeUtf8());
    const DocumentText current(after.SerializeUtf8(old.Text().size()));
    return CompareElements(old.Root(), current.Root());
}

std::vector<Difference> CompareTexts(const WideString &before, const WideString &after)
{
    const DocumentText old(WholeText(before));
    const DocumentText current(WholeText(after));
    return CompareElements(old.Root(), current.Root());
}

WideString ApplyToText(const WideString &text, const std::vector<Difference> &differences)
{
    const DocumentText document(WholeText(text));
    return FromUtf8(Patched(document.Root(), differences));
}

} // namespace marlet::project
