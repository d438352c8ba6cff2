#pragma once

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>
#include <marlet/foundation/xml/XmlText.h>

#include <memory>
#include <optional>
#include <type_traits>

namespace pugi
{
struct xml_node_struct;
}

namespace marlet::project
{

class LoadContext;

/// One element of a parsed document, or no element at all. As light as a pointer; valid while its XmlDocument
/// lives. Reading a null cursor gives what an element without children and attributes gives.
class XmlCursor
{
public:
    XmlCursor() = default;
    explicit XmlCursor(pugi::xml_node_struct *node) : node_(node) {}

    bool IsNull() const { return node_ == nullptr; }
    std::string_view Name() const;
    /// Whoever asks for a tag knows the element if it has it.
    bool Is(std::string_view tag) const;

    /// The first child element with that name, or null. Case counts.
    XmlCursor Find(const char *name) const;
    /// The same. @throws XmlParseException "Missing element".
    XmlCursor Require(const char *name) const;
    /// Child elements only: text, comments and instructions are passed over. Whoever knows what to do with
    /// one says so by Is or MarkKnown.
    XmlCursor FirstChild() const;
    XmlCursor Next() const;
    XmlCursor Next(const char *name) const;
    void MarkKnown() const;

    /// Ignores case. @throws XmlParseException "Wrong tag name".
    void RequireTag(const char *tag) const;
    /// The tag and the attribute "Version", which it returns.
    /// @throws XmlParseException; InvalidProjectVersionException if the version is above the highest one
    /// known.
    unsigned int RequireHeader(const char *tag, unsigned int highestVersion) const;
    /// @throws XmlParseException: the node's name, " is missing attribute ", the attribute's name.
    void RequireAttribute(const char *name) const;

    bool HasAttribute(const char *name) const;
    /// Empty if there is no such attribute.
    std::string_view AttributeText(const char *name) const;
    /// What the attribute says, 0 if there is none.
    void Attribute(const char *name, bool &value) const; ///< any number but 0 is true
    void Attribute(const char *name, int &value) const;
    void Attribute(const char *name, unsigned int &value) const;
    void Attribute(const char *name, std::uint64_t &value) const;
    void Attribute(const char *name, float &value) const;
    void Attribute(const char *name, double &value) const;
    void Attribute(const char *name, kytl::KyID &value) const; ///< @throws std::runtime_error
    void Attribute(const char *name, WideString &value) const;
    template <class Enum>
    requires std::is_enum_v<Enum>
    void Attribute(const char *name, Enum &value) const
    {
        int number = 0;
        Attribute(name, number);
        value = static_cast<Enum>(number);
    }

    /// RequireAttribute and Attribute in one, which looks for it once.
    void RequiredAttribute(const char *name, int &value) const;
    void RequiredAttribute(const char *name, float &value) const;

    /// All text and CDATA below the element, in UTF-8; comments are left out of the middle.
    NarrowString Text() const;

    /// The text of this element as a value.
    void Get(int &value) const;
    void Get(unsigned int &value) const;
    void Get(float &value) const;
    void Get(double &value) const;
    void Get(bool &value) const;       ///< @throws boost::bad_lexical_cast
    void Get(kytl::KyID &value) const; ///< @throws std::runtime_error
    void Get(WideString &value) const;
    /// The attributes R, G, B and A. @throws XmlParseException if one is missing.
    void Get(kytl::KyColorRGBA_32f &value) const;
    template <class Enum>
    requires std::is_enum_v<Enum>
    void Get(Enum &value) const
    {
        int number = 0;
        Get(number);
        value = static_cast<Enum>(number);
    }

    /// The ID in a child, for who looks at a document without reading it; none if there is none.
    std::optional<kytl::KyID> FindID(const char *name) const;

    /// Reads a required child: the counterpart of XmlWriter::Child. @throws as Require and Get.
    template <class T> void Child(const char *name, T &value) const { Require(name).Get(value); }

    /// The node of the parser's tree.
    pugi::xml_node_struct *Node() const { return node_; }

private:
    std::string_view RequiredText(const char *name) const;

    pugi::xml_node_struct *node_ = nullptr;
};

/// A parsed text.
///
/// A text counts only when it is whole: one that does not parse to its end, has not exactly one root element
/// with nothing but blanks, comments and instructions around it, or declares a document type, has no root.
/// What the reader of a class then says is what it says of a wrong root.
class XmlDocument
{
public:
    /// @throws XmlParseException "Nesting too deep" if elements are nested deeper than kDeepestNesting.
    explicit XmlDocument(std::u16string_view text) : XmlDocument(text, nullptr) {}
    /// One whose reading a load follows, if there is one. It must outlive the load then.
    XmlDocument(std::u16string_view text, LoadContext *context);
    XmlDocument(const XmlDocument &) = delete;
    XmlDocument &operator=(const XmlDocument &) = delete;
    ~XmlDocument();

    /// The root element, or null.
    XmlCursor Root() const;

private:
    struct Tree;
    std::unique_ptr<Tree> tree_;
};

/// How many elements may stand inside one another, in reading and in writing. What recurses over elements
/// rests on it.
constexpr int kDeepestNesting = 1000;

} // namespace marlet::project
