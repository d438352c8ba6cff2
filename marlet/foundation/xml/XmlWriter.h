#pragma once

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/xml/KeptXml.h>
#include <marlet/foundation/xml/XmlText.h>

#include <map>
#include <type_traits>
#include <vector>

namespace marlet::project
{

/// Streams elements into one text: a blank of indentation per level, no declaration, a line feed at the end.
/// Characters that XML cannot hold are left out. There is no tree: what is written is written.
class XmlWriter
{
public:
    XmlWriter();
    /// Gathers the text in one piece, for TakeUtf8, with room for so many bytes at first.
    explicit XmlWriter(std::size_t expectedBytes);

    /// Leaves out what is kept of the elements that begin from now on.
    void LeaveKept() { writesKept_ = false; }

    /// Names must be XML names, and tags outlive the element (the closing tag is written from them).
    /// @throws XmlParseException "Nesting too deep"
    void Begin(std::string_view tag);
    /// With what is kept for the element. It is written in its place, and must outlive the element.
    void Begin(std::string_view tag, const KeptXml &kept);
    void End();

    /// Attributes come directly after Begin.
    void Attribute(std::string_view name, bool value); ///< 0 or 1
    void Attribute(std::string_view name, int value);
    void Attribute(std::string_view name, unsigned int value);
    void Attribute(std::string_view name, std::int64_t value);
    void Attribute(std::string_view name, std::uint64_t value);
    void Attribute(std::string_view name, float value);
    void Attribute(std::string_view name, double value);
    void Attribute(std::string_view name, const kytl::KyID &value);
    void Attribute(std::string_view name, std::u16string_view value);
    void Attribute(std::string_view name, const WideString &value)
    {
        Attribute(name, std::u16string_view(value));
    }
    void Attribute(std::string_view name, std::string_view utf8);
    void Attribute(std::string_view name, const char *utf8) { Attribute(name, std::string_view(utf8)); }
    template <class Enum>
    requires std::is_enum_v<Enum>
    void Attribute(std::string_view name, Enum value) { Attribute(name, static_cast<int>(value)); }

    /// Text content of the open element. An element with text, also an empty one, stands on one line.
    void Text(std::u16string_view text);
    void Text(std::string_view utf8);

    /// Whole child elements: the counterpart of XmlCursor::Child.
    void Child(std::string_view name, int value);
    void Child(std::string_view name, unsigned int value);
    void Child(std::string_view name, float value);
    void Child(std::string_view name, double value);
    void Child(std::string_view name, bool value);
    void Child(std::string_view name, const kytl::KyID &value);
    void Child(std::string_view name, const WideString &value);
    void Child(std::string_view name, const kytl::KyColorRGBA_32f &value); ///< attributes R, G, B, A
    template <class Enum>
    requires std::is_enum_v<Enum>
    void Child(std::string_view name, Enum value) { Child(name, static_cast<int>(value)); }

    /// A whole child element as it stood in a text. Its lines are not indented anew.
    void Element(std::string_view tag, std::string_view source);

    /// The finished text.
    WideString Take();
    /// The same in UTF-8, of a writer that gathers it.
    NarrowString TakeUtf8();

private:
    enum class State { OpenTag, Children, Text };

    struct Open {
        std::string_view tag;
        State state;
        int kept; ///< its number in kept_, or -1
    };
    /// A child that was written by itself.
    struct Written {
        kytl::KyID id;
        std::size_t end = 0; ///< in the block
    };
    /// What is kept for an open element, and how far its writing has come.
    struct Kept {
        explicit Kept(const KeptPlace *of) : place(of) {}
        bool HasObjects() const { return !place->written.empty(); }

        const KeptPlace *place;
        std::size_t written = 0;   ///< elements
        unsigned int children = 0; ///< that were written by themselves
        std::map<std::string_view, unsigned int> ofTag;
        // If kept elements stand behind objects:
        std::size_t start = 0; ///< of the first child, in the block
        std::vector<Written> objects;
    };

    void AppendEscaped(std::string_view utf8, bool attribute);
    void AppendContent(std::u16string_view text, bool attribute);
    void AppendContent(std::string_view utf8, bool attribute);
    void StartBlockIfFull();
    void Gather();
    void StartTag(std::string_view tag);
    void StartLine();
    void CloseStartTag();
    void Push(std::string_view tag, const KeptPlace *kept);
    void PushKept(const KeptPlace *kept);
    const KeptPlace *PassKept(std::string_view tag);
    void WriteKeptUpTo(unsigned int children);
    void WriteKeptBehindObjects();
    void AppendAttributesKept(const KeptPlace *kept);
    void TellApart(std::string_view value);
    void NoteID(std::size_t object, const kytl::KyID &id);
    void NoteEnd();
    Kept *KeptOf(std::size_t open);
    void EndTag(std::string_view tag);
    void StartAttribute(std::string_view name);
    void StartText();
    void AppendAttribute(std::string_view name, std::string_view ascii);
    void AppendChild(std::string_view name, std::string_view ascii);

    // The text in UTF-8, which is half as much to write until it is taken, and in blocks, which never move.
    std::vector<NarrowString> fullBlocks_;
    NarrowString block_;
    NarrowString gathered_;
    bool gathers_ = false;
    std::vector<Open> open_;
    std::vector<Kept> kept_; ///< of the open elements that have something
    const KeptPlace *keptOfChild_ = nullptr;
    std::size_t withObjects_ = 0; ///< of the open elements, for which the block has to stay whole
    bool writesKept_ = true;
};

/// An element that ends with its scope.
class XmlElement
{
public:
    XmlElement(XmlWriter &writer, std::string_view tag) : writer_(writer) { writer_.Begin(tag); }
    /// With the attribute "Version".
    XmlElement(XmlWriter &writer, std::string_view tag, unsigned int version) : XmlElement(writer, tag)
    {
        writer_.Attribute("Version", version);
    }
    /// With what is kept of the object, too.
    XmlElement(XmlWriter &writer, std::string_view tag, unsigned int version, const KeptXml &kept)
        : writer_(writer)
    {
        writer_.Begin(tag, kept);
        writer_.Attribute("Version", version);
    }
    XmlElement(const XmlElement &) = delete;
    XmlElement &operator=(const XmlElement &) = delete;
    ~XmlElement() { writer_.End(); }

private:
    XmlWriter &writer_;
};

/// The stand-alone text of what a function writes.
template <class Write> WideString XmlText(Write &&write)
{
    XmlWriter writer;
    write(writer);
    return writer.Take();
}

} // namespace marlet::project
