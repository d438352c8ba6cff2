#include <marlet/foundation/xml/LoadContext.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/TextPlace.h>
#include <marlet/foundation/xml/XmlSource.h>

#include <pugixml.hpp>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

// Each element has three places in the buffer of its own, since its name is followed by a blank, a slash or a
// bracket and preceded by a bracket.
constexpr std::size_t kKnown = 0;
constexpr std::size_t kTaken = static_cast<std::size_t>(-1);

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

std::size_t LoadContext::OffsetOf(const char *inBuffer) const
{
    const auto offset = static_cast<std::size_t>(inBuffer - buffer_);
    return buffer_ && inBuffer >= buffer_ && offset < size_ ? offset : kNowhere;
}

std::size_t LoadContext::OffsetOf(const XmlCursor &element) const
{
    return element.IsNull() ? kNowhere : OffsetOf(pugi::xml_node(element.Node()).name());
}

std::size_t LoadContext::TagOf(const XmlCursor &element) const
{
    const std::size_t name = OffsetOf(element);
    return name == kNowhere ? kNowhere : name - 1;
}

bool LoadContext::Has(std::size_t bit) const
{
    return bit < size_ && marks_[bit];
}

void LoadContext::Set(std::size_t bit, bool value)
{
    if (bit < size_)
        marks_[bit] = value;
}

void LoadContext::MarkKnown(const XmlCursor &element)
{
    const std::size_t offset = OffsetOf(element);
    if (offset == kNowhere)
        return;
    Set(offset + kKnown, true);
    last_ = element;
}

void LoadContext::MarkUnknown(const XmlCursor &element)
{
    Set(OffsetOf(element), false);
}

void LoadContext::MarkAllKnown(const XmlCursor &element)
{
    MarkKnown(element);
    MarkAttributes(element);
    MarkText(element);
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
        MarkAllKnown(child);
    last_ = element;
}

void LoadContext::MarkWhole(const XmlCursor &element)
{
    MarkAllKnown(element);
    whole_.insert(OffsetOf(element));
}

void LoadContext::MarkAttribute(const char *name)
{
    Set(OffsetOf(name), true);
}

void LoadContext::MarkText(const XmlCursor &element)
{
    if (const std::size_t offset = OffsetOf(element); offset != kNowhere)
        Set(offset + element.Name().size(), true);
}

void LoadContext::MarkAttributes(const XmlCursor &element)
{
    for (const pugi::xml_attribute attribute : pugi::xml_node(element.Node()).attributes())
        MarkAttribute(attribute.name());
}

void LoadContext::MarkTaken(const XmlCursor &element)
{
    if (const std::size_t offset = OffsetOf(element); offset != kNowhere)
        Set(offset + kTaken, true);
}

bool LoadContext::IsKnown(const XmlCursor &element) const
{
    return Has(OffsetOf(element));
}

bool LoadContext::IsAttributeKnown(const char *name) const
{
    return Has(OffsetOf(name));
}

bool LoadContext::IsTextKnown(const XmlCursor &element) const
{
    const std::size_t offset = OffsetOf(element);
    return offset != kNowhere && Has(offset + element.Name().size());
}

bool LoadContext::IsTaken(const XmlCursor &element) const
{
    const std::size_t offset = OffsetOf(element);
    return offset != kNowhere && Has(offset + kTaken);
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
    AddAt(TagOf(element), severity, element, std::move(what), std::move(ids));
}

void LoadContext::AddUnknown(const XmlCursor &element, NarrowString what)
{
    AddAt(TagOf(element), Severity::Loss, element,
          what + (keepsUnknown_ ? "; it is kept as it stands" : "; it is passed over"), {}, keepsUnknown_);
}

void LoadContext::AddAt(std::size_t offset, Severity severity, const XmlCursor &element, NarrowString what,
                        std::vector<kytl::KyID> ids, bool isKept)
{
    if (!report_)
        return;
    // Names of a document may hold anything; a sentence stands on one line.
    std::ranges::replace_if(
        what, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    what.erase(what.find_last_not_of(" .") + 1);
    LoadEntry entry{severity, std::move(what), {}, 0, 0, 0, std::move(ids), isKept};
    // Those beyond the bound are counted only, so that nothing need be worked out for them.
    if (offset != kNowhere && report_->Entries().size() < LoadReport::kMostEntries) {
        entry.path = paths_.PathOf(element);
        entry.offset = offset;
        entry.line = 1; // until Finish
        if (entry.ids.empty())
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
    AddAt(first, Severity::Note, element,
          count == 1 ? "a comment or an instruction is passed over"
                     : std::to_string(count) + " comments and instructions are passed over",
          {});
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

void LoadContext::AddFault()
{
    constexpr std::size_t kMostLines = 10;
    const auto place = [this](std::size_t offset) {
        TextPlace at;
        at.GoTo(Source(), offset);
        return at;
    };
    const auto lineOf = [&](std::size_t offset) { return "line " + std::to_string(place(offset).line); };
    LoadEntry entry{Severity::Error, "the text is no XML: " + fault_->what, {}, 1, 0, fault_->offset, {}};
    if (fault_->otherOffset != fault_->offset)
        entry.what += "; see " + lineOf(fault_->otherOffset) + ", column " +
                      std::to_string(place(fault_->otherOffset).column);
    const std::vector<std::size_t> &open = fault_->openElements;
    NarrowString lines;
    for (std::size_t i = 0; i < open.size(); ++i) {
        const NarrowString tag(XmlNameAt(Source(), open[i] + 1));
        entry.path += (i == 0 ? "" : "/") + tag;
        if (i + kMostLines >= open.size())
            lines += (lines.empty() ? "" : ", ") + tag + " (" + lineOf(open[i]) + ")";
    }
    if (!lines.empty())
        entry.what += "; open there: " + lines;
    report_->Add(std::move(entry));
}

void LoadContext::AddError(const std::exception &error)
{
    if (fault_ && report_) {
        AddFault();
        return;
    }
    NarrowString what = error.what();
    if (const auto *contents = dynamic_cast<const ProjectException *>(&error);
        contents && contents->Code() == ProjectException::kMissingProperty)
        what += " The property " + contents->Detail() + " is missing.";
    const XmlCursor place = failed_.IsNull() ? last_ : failed_;
    // Of a value that cannot be read, the words say nothing.
    constexpr std::size_t kLongestQuote = 60;
    if (const NarrowString value = place.IsNull() || !place.FirstChild().IsNull() ? "" : place.Text();
        failed_.IsNull() && !IsBlank(value) && value.size() <= kLongestQuote)
        what += ": \"" + value + "\"";
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
