#include <marlet/foundation/xml/LoadContext.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/TextPlace.h>
#include <marlet/foundation/xml/WrittenFault.h>
#include <marlet/foundation/xml/XmlSource.h>

#include <pugixml.hpp>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool HasTextOfItsOwn(pugi::xml_node element)
{
    const auto isText = [](pugi::xml_node node) {
        return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
    };
    return !IsBlank(element.value()) || std::ranges::any_of(element.children(), [&](pugi::xml_node node) {
        return isText(node) && !IsBlank(node.value());
    });
}

} // namespace

LoadContext::LoadContext(std::u16string_view text, LoadReport *report, bool keepsUnknown)
    : text_(text), report_(report), keepsUnknown_(keepsUnknown)
{
    if (report_)
        report_->Clear();
    if (report_ || keepsUnknown_)
        current_ = this;
}

LoadContext::~LoadContext()
{
    current_ = previous_;
}

void LoadContext::Follow(const NarrowString &buffer)
{
    buffer_ = buffer.data();
    size_ = buffer.size();
    marks_.assign(size_, false);
}

const NarrowString &LoadContext::Source()
{
    // What was parsed in place is no longer what it was.
    if (!source_)
        source_ = ToUtf8(text_);
    return *source_;
}

std::string_view LoadContext::SourceOf(const XmlCursor &element)
{
    const std::size_t offset = OffsetOf(element);
    return offset == kNowhere ? std::string_view() : XmlElementAt(Source(), offset - 1);
}

std::string_view LoadContext::SourceOfAttribute(const char *name)
{
    const std::size_t offset = OffsetOf(name);
    return offset == kNowhere ? std::string_view() : XmlAttributeAt(Source(), offset);
}

void LoadContext::Add(Severity severity, const XmlCursor &element, NarrowString what,
                      std::vector<kytl::KyID> ids)
{
    AddAt(TagOf(element), element, {severity, std::move(what), {}, 0, 0, 0, std::move(ids)});
}

void LoadContext::AddUnknown(const XmlCursor &element, NarrowString what)
{
    LoadEntry entry{Severity::Loss,
                    what + (keepsUnknown_ ? "; it is kept as it stands" : "; it is passed over")};
    entry.isKept = keepsUnknown_;
    AddAt(TagOf(element), element, std::move(entry));
}

void LoadContext::AddAt(std::size_t offset, const XmlCursor &element, LoadEntry entry)
{
    if (!report_)
        return;
    // Names of a document may hold anything; a sentence stands on one line.
    std::ranges::replace_if(
        entry.what, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    entry.what.erase(entry.what.find_last_not_of(" .") + 1);
    // Those beyond the bound are counted only, so that nothing need be worked out for them.
    if (offset != kNowhere && report_->Entries().size() < LoadReport::kMostEntries) {
        entry.offset = offset;
        entry.line = 1; // until Finish
        if (!element.IsNull())
            entry.path = paths_.PathOf(element);
        if (entry.ids.empty() && !element.IsNull())
            entry.ids = paths_.IDsOf(element);
    }
    report_->Add(std::move(entry));
}

void LoadContext::AddUse(const UnresolvedPlugin &plugin)
{
    if (report_)
        report_->AddUse(plugin);
}

void LoadContext::TellOfUnknown(const XmlCursor &root)
{
    if (!report_ || root.IsNull())
        return;
    AddDeclaration();
    if (hasSections_)
        AddSections(root);
    AddUnknownBelow(root);
}

void LoadContext::AddSections(const XmlCursor &root)
{
    for (const XmlSection &section : XmlSections(Source())) {
        const std::size_t element =
            section.element == NarrowString::npos ? OffsetOf(root) : section.element + 1;
        ++sections_.try_emplace(element, section.offset, 0).first->second.second;
    }
}

void LoadContext::AddSectionsOf(const XmlCursor &element)
{
    const auto found = sections_.find(OffsetOf(element));
    if (found == sections_.end())
        return;
    const auto &[first, count] = found->second;
    LoadEntry entry{Severity::Note,
                    count == 1 ? "a comment or an instruction is passed over"
                               : std::to_string(count) + " comments and instructions are passed over"};
    entry.isDropped = true;
    AddAt(first, element, std::move(entry));
}

void LoadContext::AddDeclaration()
{
    if (!text_.starts_with(u"<?xml ") && !text_.starts_with(u"<?xml\t") && !text_.starts_with(u"<?xml\n"))
        return;
    LoadEntry entry{Severity::Note,
                    "the XML declaration is passed over; what is saved is UTF-8 and has none"};
    entry.isDropped = true;
    AddAt(0, XmlCursor(), std::move(entry));
}

void LoadContext::AddUnknownBelow(const XmlCursor &element)
{
    if (whole_.contains(OffsetOf(element)))
        return;
    AddSectionsOf(element);
    const pugi::xml_node node(element.Node());
    for (const pugi::xml_attribute attribute : node.attributes())
        if (!IsAttributeKnown(attribute.name()))
            AddUnknown(element, NarrowString("attribute ") + attribute.name() + " is not known");
    if (!IsTextKnown(element) && HasTextOfItsOwn(node))
        Add(Severity::Loss, element, "text between elements is passed over");
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        if (IsKnown(child)) {
            AddUnknownBelow(child);
            continue;
        }
        if (references_.contains(OffsetOf(child)))
            continue;
        const bool isRepeated = IsKnown(XmlCursor(node.child(child.Name().data()).internal_object()));
        AddUnknown(child, NarrowString(child.Name()) +
                              (isRepeated ? " stands there already, and the first one counts"
                                          : " is not known here"));
    }
}

void LoadContext::TakeScan(const XmlScan &scan)
{
    fault_ = scan.fault;
    hasSections_ = scan.hasSections;
    if (!fault_ && scan.hasDocumentType) {
        const std::size_t offset = Source().find("<!DOCTYPE");
        fault_ = XmlFault{offset, "it declares a document type, which no project does", offset, {}};
    }
    if (!fault_ && scan.tooDeep)
        fault_ = XmlFault{*scan.tooDeep, "elements are nested too deep", *scan.tooDeep, {}};
}

void LoadContext::AddError(const std::exception &error)
{
    if (fault_ && report_) {
        report_->Add(WrittenFault(*fault_, Source()));
        return;
    }
    NarrowString what = error.what();
    if (const auto *contents = dynamic_cast<const ProjectException *>(&error);
        contents && contents->Code() == ProjectException::kMissingProperty)
        what += " The property " + contents->Detail() + " is missing.";
    const XmlCursor place = failed_.IsNull() ? last_ : failed_;
    // Of a value that cannot be read, the words say nothing.
    constexpr std::size_t kLongestQuote = 60;
    const NarrowString value = place.IsNull() || !place.FirstChild().IsNull() ? "" : place.Text();
    if (failed_.IsNull() && !IsBlank(value) && value.size() <= kLongestQuote)
        what += ": \"" + value + "\"";
    else if (failed_.IsNull() && what.ends_with(" from string"))
        what += ": it is empty";
    if (dynamic_cast<const InvalidProjectVersionException *>(&error) && !failed_.IsNull())
        what.insert(what.find_last_not_of(" .") + 1,
                    ": its version is " + NarrowString(failed_.AttributeText("Version")));
    Add(Severity::Error, place, std::move(what));
}

void LoadContext::Finish()
{
    if (!report_)
        return;
    report_->Sort();
    TextPlace place;
    for (LoadEntry &entry : report_->entries_) {
        if (entry.line == 0)
            break;
        place.GoTo(Source(), entry.offset);
        entry.line = place.line;
        entry.column = place.column;
    }
}

void PassOver(const XmlCursor &element)
{
    if (LoadContext *const context = LoadContext::Current(); context && !element.IsNull())
        context->MarkAllKnown(element);
}

void Disown(const XmlCursor &element)
{
    if (LoadContext *const context = LoadContext::Current())
        context->MarkUnknown(element);
}

bool IsKept(const kytl::KyID &id)
{
    const LoadContext *const context = LoadContext::Current();
    return context && context->IDsKept().contains(id);
}

void TellOfChoice(const XmlCursor &element, const char *field, int number)
{
    TellLoad(LoadEntry::Severity::Warning, element,
             NarrowString(field) + " is " + std::to_string(number) +
                 ", which stands for nothing; it is kept as it is");
}

void TellLoad(LoadEntry::Severity severity, const XmlCursor &element, NarrowString what,
              std::vector<kytl::KyID> ids)
{
    if (LoadContext *const context = LoadContext::Current())
        context->Add(severity, element, std::move(what), std::move(ids));
}

} // namespace marlet::project
