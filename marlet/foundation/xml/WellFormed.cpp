#include <marlet/foundation/xml/WellFormed.h>

#include <marlet/foundation/xml/DocumentType.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlScanner.h>

#include <algorithm>
#include <cstdint>
#include <unordered_set>

namespace marlet::project
{

namespace
{

/// The names of the attributes of one element.
class AttributeNames
{
public:
    void Clear()
    {
        names_.clear();
        marks_ = 0;
    }

    /// Takes a name over, unless it is there: then the place of the first one.
    const char *Add(std::string_view name)
    {
        const std::uint64_t mark = MarkOf(name);
        const bool mayBeThere = (marks_ & mark) != 0;
        marks_ |= mark;
        const char *const first = mayBeThere || names_.size() >= kFew ? Find(name) : nullptr;
        if (!first)
            names_.push_back(name);
        return first;
    }

private:
    static constexpr std::size_t kFew = 16;

    /// One bit, mostly another one for another name.
    static std::uint64_t MarkOf(std::string_view name)
    {
        const auto first = static_cast<unsigned char>(name.front());
        const auto last = static_cast<unsigned char>(name.back());
        return std::uint64_t(1) << ((first + 7 * last + 31 * name.size()) % 64);
    }

    const char *Find(std::string_view name)
    {
        if (names_.size() < kFew) {
            const auto place = std::ranges::find(names_, name);
            return place == names_.end() ? nullptr : place->data();
        }
        if (names_.size() == kFew)
            many_ = {names_.begin(), names_.end()};
        const auto [place, isNew] = many_.insert(name);
        return isNew ? nullptr : place->data();
    }

    std::vector<std::string_view> names_;
    std::uint64_t marks_ = 0;
    /// All of them, where they are more than a few.
    std::unordered_set<std::string_view> many_;
};

class Document
{
public:
    Document(std::string_view text, XmlScan &scan) : scanner_(text), scan_(scan) {}

    void Scan();
    std::vector<std::size_t> OpenElements() const;

private:
    void Prolog();
    bool Miscellaneous();
    void Content();
    void Markup();
    void StartTag();
    void Attribute();
    void EndTag();
    void Epilog(const char *root);
    void EnterElement() { scanner_.Enter("in an element", StartOf(open_.back())); }
    static const char *StartOf(std::string_view name) { return name.data() - 1; }
    [[noreturn]] void FailEndTag(const char *start);
    [[noreturn]] void FailDeclaration(const char *where);
    [[noreturn]] void FailOutside(const char *root);

    XmlScanner scanner_;
    XmlScan &scan_;
    /// The names in the start tags of the elements that are open.
    std::vector<std::string_view> open_;
    AttributeNames attributes_;
};

std::vector<std::size_t> Document::OpenElements() const
{
    std::vector<std::size_t> offsets;
    for (const std::string_view name : open_)
        offsets.push_back(scanner_.OffsetOf(StartOf(name)));
    return offsets;
}

void Document::Scan()
{
    Prolog();
    const char *const root = scanner_.At();
    if (scanner_.Peek() != '<' || scanner_.Peek(1) == '!' || scanner_.Peek(1) == '/')
        FailOutside(nullptr);
    StartTag();
    Content();
    Epilog(root);
}

/// A comment or an instruction, where there is one.
bool Document::Miscellaneous()
{
    if (scanner_.IsBefore("<?"))
        scanner_.Instruction();
    else if (scanner_.IsBefore("<!-"))
        scanner_.Comment();
    else
        return false;
    scan_.hasSections = true;
    return true;
}

void Document::Prolog()
{
    scanner_.Enter("before its root element");
    scanner_.Take("\xEF\xBB\xBF");
    constexpr std::string_view behindTarget(" \t\r\n?\0", 6);
    const bool isDeclared =
        scanner_.IsBefore("<?xml") && behindTarget.find(scanner_.Peek(5)) != std::string_view::npos;
    const bool standsAlone = isDeclared && scanner_.Declaration();
    for (;;) {
        scanner_.SkipBlanks();
        scanner_.Enter("before its root element");
        if (scanner_.IsBefore("<!D") && !scan_.hasDocumentType) {
            scan_.hasDocumentType = true;
            ScanDocumentType(scanner_, standsAlone);
        } else if (!Miscellaneous()) {
            return;
        }
    }
}

void Document::Content()
{
    while (!open_.empty()) {
        scanner_.PlainText();
        switch (scanner_.Peek()) {
        case '<':
            Markup();
            break;
        case ']':
            if (scanner_.IsBefore("]]>"))
                scanner_.Fail("\"]]>\" stands in a text");
            scanner_.Skip(1);
            break;
        case '&':
            EnterElement();
            scanner_.Reference(XmlScanner::Where::Content);
            break;
        default:
            EnterElement();
            scanner_.Fail({});
        }
    }
}

void Document::Markup()
{
    const char second = scanner_.Peek(1);
    if (second == '/') {
        EndTag();
    } else if (second != '!' && second != '?') {
        StartTag();
    } else if (scanner_.IsBefore("<![")) {
        scanner_.CDataSection();
        scan_.hasSections = true;
    } else if (!Miscellaneous()) {
        EnterElement();
        FailDeclaration("inside an element");
    }
}

void Document::StartTag()
{
    scanner_.Enter("in a start tag");
    const char *const start = scanner_.At();
    scanner_.Skip(1);
    const std::string_view name = scanner_.Name("\"<\" begins no tag");
    if (open_.size() >= std::size_t(kDeepestNesting) && !scan_.tooDeep)
        scan_.tooDeep = scanner_.OffsetOf(start);
    attributes_.Clear();
    for (;;) {
        const bool isBlankBefore = scanner_.SkipBlanks();
        const char c = scanner_.Peek();
        if (c == '>') {
            scanner_.Skip(1);
            open_.push_back(name);
            return;
        }
        if (c == '/') {
            scanner_.Skip(1);
            scanner_.Expect('>', "\"/\" stands in a start tag");
            return;
        }
        if (!isBlankBefore)
            scanner_.Fail("a start tag goes on with what is no attribute");
        Attribute();
    }
}

void Document::Attribute()
{
    const std::string_view name = scanner_.Name("a start tag goes on with what is no attribute");
    if (scanner_.IsAtEnd())
        scanner_.Fail({}); // perhaps in the middle of the name
    if (const char *const first = attributes_.Add(name))
        scanner_.FailAt(name.data(), "the attribute " + Quoted(name) + " stands twice in its element", first);
    scanner_.SkipBlanks();
    scanner_.Expect('=', "an attribute has no value");
    scanner_.SkipBlanks();
    scanner_.AttributeValue();
}

void Document::EndTag()
{
    scanner_.Enter("in an end tag");
    const char *const start = scanner_.At();
    scanner_.Skip(2);
    if (!scanner_.Take(open_.back()))
        FailEndTag(start);
    scanner_.SkipBlanks();
    if (!scanner_.Take('>'))
        FailEndTag(start);
    open_.pop_back();
}

void Document::FailEndTag(const char *start)
{
    scanner_.GoBackTo(start + 2);
    const std::string_view name = scanner_.Name("an end tag has no name");
    if (name == open_.back() || scanner_.IsAtEnd()) {
        scanner_.SkipBlanks();
        scanner_.Fail("an end tag does not end in \">\"");
    }
    scanner_.FailAt(start,
                    "the end tag is one of " + Quoted(name) + ", the element is " + Quoted(open_.back()),
                    StartOf(open_.back()));
}

/// At a "<!" that begins nothing that may stand here.
void Document::FailDeclaration(const char *where)
{
    const char *const place = scanner_.At();
    const char *const kind = scanner_.IsBefore("<!D")   ? "a document type"
                             : scanner_.IsBefore("<![") ? "a CDATA section"
                                                        : "what is no comment";
    scanner_.Skip(2);
    if (scanner_.IsAtEnd())
        scanner_.Fail({});
    scanner_.FailAt(place, std::string(kind) + " stands " + where);
}

/// At what may not stand beside the root element, before it if there is none yet.
void Document::FailOutside(const char *root)
{
    if (scanner_.IsBefore("<!"))
        FailDeclaration(root ? "behind the root element" : "where the root element should");
    const char *const place = scanner_.At();
    if (!scanner_.Take('<'))
        scanner_.Fail("a text stands outside of the root element");
    if (scanner_.IsAtEnd())
        scanner_.Fail({});
    if (scanner_.Peek() == '/')
        scanner_.FailAt(place, "an end tag has no start tag");
    scanner_.FailAt(place, "a second element stands behind the root element", root);
}

void Document::Epilog(const char *root)
{
    do {
        scanner_.SkipBlanks();
        if (scanner_.IsAtEnd())
            return;
        scanner_.Enter("behind its root element");
    } while (Miscellaneous());
    FailOutside(root);
}

} // namespace

XmlScan ScanXml(std::string_view utf8)
{
    XmlScan scan;
    Document document(utf8, scan);
    try {
        document.Scan();
    } catch (XmlFault &fault) {
        fault.openElements = document.OpenElements();
        scan.fault = std::move(fault);
    }
    return scan;
}

std::optional<XmlFault> FindXmlFault(std::string_view utf8)
{
    return ScanXml(utf8).fault;
}

} // namespace marlet::project
