// Elements, and what a load has kept between them.

#include <marlet/foundation/xml/XmlWriter.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace marlet::project
{

namespace
{

/// The ID of the object in an element that is written as it came, or null.
kytl::KyID IDIn(std::string_view source)
{
    constexpr std::string_view kStart = "<ID>";
    const std::size_t at = source.find(kStart);
    if (at == std::string_view::npos)
        return {};
    const std::string_view text = source.substr(at + kStart.size());
    try {
        return kytl::KyID::FromString(text.substr(0, text.find('<')));
    } catch (const std::exception &) { // then it has none
        return {};
    }
}

} // namespace

void XmlWriter::StartTag(std::string_view tag)
{
    if (open_.size() >= std::size_t(kDeepestNesting))
        throw XmlParseException("Nesting too deep");
    StartBlockIfFull();
    keptOfChild_ = open_.empty() || open_.back().kept < 0 ? nullptr : PassKept(tag);
    StartLine();
    block_ += '<';
    block_ += tag;
}

void XmlWriter::StartLine()
{
    if (open_.empty())
        return;
    CloseStartTag();
    State &parent = open_.back().state;
    if (parent == State::OpenTag)
        block_ += '\n';
    if (Kept *const kept = KeptOf(open_.size() - 1); kept && kept->objects.size() == 1 && kept->start == 0)
        kept->start = block_.size();
    // Behind a text a blank would belong to it.
    if (parent != State::Text)
        block_.append(open_.size(), ' ');
    parent = State::Children;
}

void XmlWriter::CloseStartTag()
{
    const Open &element = open_.back();
    if (element.state != State::OpenTag)
        return;
    if (element.kept >= 0)
        AppendAttributesKept(kept_[static_cast<std::size_t>(element.kept)].place);
    block_ += '>';
}

void XmlWriter::EndTag(std::string_view tag)
{
    block_ += "</";
    block_ += tag;
    block_ += ">\n";
}

void XmlWriter::Begin(std::string_view tag)
{
    StartTag(tag);
    Push(tag, keptOfChild_);
}

void XmlWriter::Begin(std::string_view tag, const KeptXml &kept)
{
    StartTag(tag);
    Push(tag, writesKept_ ? kept.Root() : nullptr);
}

void XmlWriter::End()
{
    if (open_.back().kept >= 0) {
        WriteKeptUpTo(std::numeric_limits<unsigned int>::max());
        WriteKeptBehindObjects();
    }
    const Open element = open_.back();
    open_.pop_back();
    if (element.kept >= 0) {
        if (element.state == State::OpenTag)
            AppendAttributesKept(kept_.back().place);
        withObjects_ -= kept_.back().HasObjects();
        kept_.pop_back();
    }
    if (element.state == State::OpenTag) {
        block_ += "/>\n";
    } else {
        if (element.state == State::Children)
            block_.append(open_.size(), ' ');
        EndTag(element.tag);
    }
    NoteEnd();
}

XmlWriter::Kept *XmlWriter::KeptOf(std::size_t open)
{
    const int number = open < open_.size() ? open_[open].kept : -1;
    return number < 0 ? nullptr : &kept_[static_cast<std::size_t>(number)];
}

void XmlWriter::Push(std::string_view tag, const KeptPlace *kept)
{
    open_.push_back({tag, State::OpenTag, -1});
    if (kept)
        PushKept(kept);
}

/// For the element that has begun last.
void XmlWriter::PushKept(const KeptPlace *kept)
{
    open_.back().kept = static_cast<int>(kept_.size());
    kept_.emplace_back(kept);
    withObjects_ += kept_.back().HasObjects();
}

/// Takes what is kept for an element that its place among others does not tell.
void XmlWriter::TellApart(std::string_view value)
{
    if (open_.size() < 2 || open_.back().kept >= 0)
        return;
    Kept *const parent = KeptOf(open_.size() - 2);
    if (!parent || parent->place->children.empty())
        return;
    const auto &kept = parent->place->children;
    const NarrowString tag(open_.back().tag);
    const NarrowString which = tag + ' ' + NarrowString(value) + ' ';
    // Several may have one value.
    const auto ofValue = kept.lower_bound({tag, which});
    if (ofValue == kept.end() || ofValue->first.first != tag || !ofValue->first.second.starts_with(which))
        return;
    const unsigned int number =
        parent->ofTag[std::string_view(ofValue->first.second).substr(0, which.size())]++;
    const auto found = kept.find({tag, which + std::to_string(number)});
    if (found != kept.end())
        PushKept(&found->second);
}

/// An object that is open, by its number, or the child of the last open element that was just written, has
/// an ID.
void XmlWriter::NoteID(std::size_t object, const kytl::KyID &id)
{
    if (withObjects_ == 0)
        return;
    Kept *const own = KeptOf(open_.size() - 1);
    Kept *const around = object > 0 ? KeptOf(object - 1) : nullptr;
    for (Kept *kept : {own, around})
        if (kept && kept->HasObjects() && !kept->objects.empty() && kept->objects.back().id.IsNull())
            kept->objects.back().id = id;
}

void XmlWriter::NoteEnd()
{
    Kept *const kept = withObjects_ == 0 || open_.empty() ? nullptr : KeptOf(open_.size() - 1);
    if (kept && !kept->objects.empty())
        kept->objects.back().end = block_.size();
}

/// Those that the element has got meanwhile go: an attribute that stands twice is no XML.
void XmlWriter::AppendAttributesKept(const KeptPlace *kept)
{
    if (!kept)
        return;
    const NarrowString written = block_.substr(block_.rfind('<'));
    for (const NarrowString &attribute : kept->attributes) {
        const NarrowString start = ' ' + attribute.substr(0, attribute.find_first_of(" \t\r\n=")) + "=\"";
        if (written.find(start) == NarrowString::npos)
            (block_ += ' ') += attribute;
    }
}

void XmlWriter::Element(std::string_view tag, std::string_view source)
{
    StartBlockIfFull();
    Kept *const parent = open_.empty() ? nullptr : KeptOf(open_.size() - 1);
    if (parent)
        PassKept(tag);
    StartLine();
    block_ += source;
    block_ += '\n';
    if (!parent || !parent->HasObjects())
        return;
    parent->objects.back().id = IDIn(source);
    NoteEnd();
}

/// Writes what stands in front of the next child of the open element, and finds what is kept for that child.
const KeptPlace *XmlWriter::PassKept(std::string_view tag)
{
    Kept &parent = kept_.back();
    WriteKeptUpTo(parent.children);
    ++parent.children;
    if (parent.HasObjects())
        parent.objects.emplace_back();
    const auto &kept = parent.place->children;
    // The tag may be gone before its parent ends, the one that is kept is not.
    const auto ofTag = kept.lower_bound({NarrowString(tag), {}});
    if (ofTag == kept.end() || ofTag->first.first != tag)
        return nullptr;
    const unsigned int number = parent.ofTag[ofTag->first.first]++;
    const auto found = kept.find({NarrowString(tag), std::to_string(number)});
    return found == kept.end() ? nullptr : &found->second;
}

void XmlWriter::WriteKeptUpTo(unsigned int children)
{
    Kept &parent = kept_.back();
    const auto &elements = parent.place->elements;
    for (; parent.written < elements.size() && elements[parent.written].inFront <= children;
         ++parent.written) {
        if (parent.place->IsBehindObject(elements[parent.written]))
            continue; // until it is known which objects there are
        StartLine();
        block_ += elements[parent.written].source;
        block_ += '\n';
    }
}

/// Each behind the nearest of the objects in front of it that is still there, wherever that stands now.
/// Copies have objects with other IDs: of these as many stay in front as there were.
void XmlWriter::WriteKeptBehindObjects()
{
    const Kept &parent = kept_.back();
    if (!parent.HasObjects())
        return;
    // Several may have one ID.
    std::unordered_map<kytl::KyID, std::vector<std::size_t>> places;
    for (std::size_t i = 0; i < parent.objects.size(); ++i)
        if (!parent.objects[i].id.IsNull())
            places[parent.objects[i].id].push_back(i + 1);
    const std::vector<kytl::KyID> &before = parent.place->written;
    const bool isCopy =
        std::ranges::none_of(before, [&places](const kytl::KyID &id) { return places.contains(id); });
    std::vector<NarrowString> behind(parent.objects.size() + 1);
    for (const KeptPlace::Element &element : parent.place->elements) {
        if (!parent.place->IsBehindObject(element))
            continue;
        std::size_t at = isCopy ? std::min<std::size_t>(element.inFront, parent.objects.size()) : 0;
        for (std::size_t i = element.inFront; !isCopy && i > 0 && at == 0; --i) {
            const auto found = places.find(before[i - 1]);
            if (found == places.end())
                continue;
            const auto same = static_cast<std::size_t>(
                std::count(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(i), before[i - 1]));
            at = found->second[std::min(same, found->second.size()) - 1];
        }
        ((behind[at].append(open_.size(), ' ')) += element.source) += '\n';
    }
    if (parent.objects.empty()) {
        StartLine();
        block_.resize(block_.size() - open_.size()); // the lines bring their own
        block_ += behind[0];
        return;
    }
    const NarrowString objects = block_.substr(parent.start);
    block_.resize(parent.start);
    block_ += behind[0];
    std::size_t taken = 0;
    for (std::size_t i = 0; i < parent.objects.size(); ++i) {
        const std::size_t end = parent.objects[i].end - parent.start;
        (block_ += std::string_view(objects).substr(taken, end - taken)) += behind[i + 1];
        taken = end;
    }
    block_ += std::string_view(objects).substr(taken);
}

} // namespace marlet::project
