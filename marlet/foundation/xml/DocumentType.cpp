#include <marlet/foundation/xml/DocumentType.h>

#include <marlet/foundation/xml/XmlCharacters.h>
#include <marlet/foundation/xml/XmlScanner.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using Kind = XmlEntities::Kind;

constexpr char kNoName[] = "a name is missing in a declaration";
constexpr char kNoEnd[] = "a declaration does not end in \">\"";

void PublicIdentifier(XmlScanner &scanner)
{
    const char *const place = scanner.At();
    const auto isForbidden = [](char c) {
        const bool isAlphanumeric =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        return !isAlphanumeric &&
               std::string_view(" \r\n-'()+,./:=?;!*#@$_%").find(c) == std::string_view::npos;
    };
    if (std::ranges::any_of(scanner.Literal(), isForbidden))
        scanner.FailAt(place, "a public identifier has a character that it may not have");
}

/// With the blanks behind it. The system's part may be missing from a notation alone.
/// @returns whether there is one.
bool ExternalIdentifier(XmlScanner &scanner, bool isOfNotation)
{
    if (scanner.Take("SYSTEM")) {
        scanner.ExpectBlanks();
        scanner.Literal();
        return true;
    }
    if (!scanner.Take("PUBLIC"))
        return false;
    scanner.ExpectBlanks();
    PublicIdentifier(scanner);
    if (isOfNotation) {
        if (!scanner.SkipBlanks() || scanner.Peek() == '>')
            return true;
    } else {
        scanner.ExpectBlanks();
    }
    scanner.Literal();
    return true;
}

void EntityDeclaration(XmlScanner &scanner)
{
    scanner.ExpectBlanks();
    const bool isParameter = scanner.Take('%');
    if (isParameter)
        scanner.ExpectBlanks();
    const std::string_view name = scanner.Name(kNoName);
    scanner.ExpectBlanks();
    Kind kind = Kind::Internal;
    if (ExternalIdentifier(scanner, false)) {
        kind = Kind::External;
        const bool isBlankBefore = scanner.SkipBlanks();
        if (isBlankBefore && !isParameter && scanner.Peek() == 'N') {
            scanner.Expect("NDATA", kNoEnd);
            scanner.ExpectBlanks();
            scanner.Name(kNoName);
            kind = Kind::Unparsed;
        }
    } else {
        scanner.EntityText();
    }
    // Of several declarations the first counts.
    if (!isParameter)
        scanner.Entities().kinds.try_emplace(name, kind);
}

void NotationDeclaration(XmlScanner &scanner)
{
    scanner.ExpectBlanks();
    scanner.Name(kNoName);
    scanner.ExpectBlanks();
    if (!ExternalIdentifier(scanner, true))
        scanner.Fail("a notation has no identifier");
}

/// The name of an element and what is said of it or its attributes, up to the end. Not how that is put
/// together, but of what.
void OtherDeclaration(XmlScanner &scanner)
{
    scanner.ExpectBlanks();
    scanner.Name(kNoName);
    while (!scanner.IsBefore(">")) {
        const char c = scanner.Peek();
        if (c == '"' || c == '\'')
            scanner.AttributeValue();
        else if (IsXmlBlank(c))
            scanner.SkipBlanks();
        else if (std::string_view("()|,?*+#").find(c) == std::string_view::npos)
            scanner.NameToken(kNoEnd);
        else
            scanner.Skip(1);
    }
}

void MarkupDeclaration(XmlScanner &scanner)
{
    scanner.Enter("in a declaration");
    if (scanner.Take("<!ENTITY"))
        EntityDeclaration(scanner);
    else if (scanner.Take("<!NOTATION"))
        NotationDeclaration(scanner);
    else if (scanner.Take("<!ELEMENT") || scanner.Take("<!ATTLIST"))
        OtherDeclaration(scanner);
    else
        scanner.Fail("what stands in the document type is no declaration");
    scanner.SkipBlanks();
    scanner.Expect('>', kNoEnd);
}

void ParameterReference(XmlScanner &scanner)
{
    scanner.Expect('%', kNoName);
    scanner.Name(kNoName);
    scanner.Expect(';', "a reference does not end in \";\"");
}

void InternalSubset(XmlScanner &scanner, bool standsAlone, const char *start)
{
    for (;;) {
        scanner.Enter("in the document type", start);
        scanner.SkipBlanks();
        if (scanner.Take(']'))
            return;
        if (scanner.IsBefore("<?")) {
            scanner.Instruction();
        } else if (scanner.IsBefore("<!-")) {
            scanner.Comment();
        } else if (scanner.Peek() == '%') {
            ParameterReference(scanner);
            scanner.Entities().areAllKnown &= standsAlone;
        } else {
            MarkupDeclaration(scanner);
        }
    }
}

} // namespace

void ScanDocumentType(XmlScanner &scanner, bool standsAlone)
{
    const char *const start = scanner.At();
    scanner.Enter("in the document type");
    scanner.Expect("<!DOCTYPE", "a declaration begins wrongly");
    scanner.ExpectBlanks();
    scanner.Name("the document type has no name");
    if (scanner.SkipBlanks() && ExternalIdentifier(scanner, false)) {
        scanner.Entities().areAllKnown = standsAlone;
        scanner.SkipBlanks();
    }
    if (scanner.Take('[')) {
        InternalSubset(scanner, standsAlone, start);
        scanner.SkipBlanks();
    }
    scanner.Expect('>', "the document type does not end in \">\"");
}

} // namespace marlet::project
