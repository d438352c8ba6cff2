#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/foundation/xml/CharacterBlocks.h>
#include <marlet/foundation/xml/XmlCharacters.h>

#include <cstddef>
#include <unordered_map>

namespace marlet::project
{

/// The general entities that a document declares.
struct XmlEntities {
    enum class Kind { Internal, External, Unparsed };

    std::unordered_map<std::string_view, Kind> kinds;
    /// False where others may be declared in what is not read.
    bool areAllKnown = true;
};

/// A place in a text that steps over what documents and their document types are made of. Each step either
/// takes the whole thing or fails, and all fail alike, with an XmlFault.
class XmlScanner
{
public:
    explicit XmlScanner(std::string_view utf8)
        : begin_(utf8.data()), at_(begin_), end_(begin_ + utf8.size()), start_(begin_), blocks_(utf8)
    {
    }

    /// Where a reference stands. In the text of an entity the name counts only where that entity is used.
    enum class Where { Content, Attribute, EntityText };

    const char *At() const { return at_; }
    bool IsAtEnd() const { return at_ == end_; }
    std::size_t OffsetOf(const char *place) const { return static_cast<std::size_t>(place - begin_); }

    /// The character so far ahead; U+0000 at the end of the text, and for itself.
    char Peek(std::ptrdiff_t ahead = 0) const { return end_ - at_ > ahead ? at_[ahead] : '\0'; }
    bool IsBefore(std::string_view token) const { return std::string_view(at_, end_).starts_with(token); }
    void Skip(std::ptrdiff_t count) { at_ += count; }
    void GoBackTo(const char *place) { at_ = place; }
    /// Steps over the token if it is there. Fails where the text ends in the middle of it.
    bool Take(std::string_view token)
    {
        const bool isThere = IsBefore(token);
        if (isThere)
            at_ += token.size();
        else
            RequireNotCut(token);
        return isThere;
    }
    bool Take(char c)
    {
        const bool isThere = !IsAtEnd() && *at_ == c;
        at_ += isThere ? 1 : 0;
        return isThere;
    }
    void Expect(char c, const char *otherwise)
    {
        if (!Take(c))
            Fail(otherwise);
    }
    void Expect(std::string_view token, const char *otherwise);
    /// Whether there were any.
    bool SkipBlanks()
    {
        const char *const start = at_;
        while (!IsAtEnd() && IsXmlBlank(*at_))
            ++at_;
        return at_ != start;
    }
    void ExpectBlanks();

    /// What is begun here, which a failure names if the text ends before it does: "in a comment".
    void Enter(const char *construct) { Enter(construct, at_); }
    void Enter(const char *construct, const char *start)
    {
        construct_ = construct;
        start_ = start;
    }

    std::string_view Name(const char *otherwise)
    {
        const char *const start = at_;
        at_ = blocks_.EndOfName(at_);
        if (at_ == start || !IsAsciiNameStart(*start) || !IsAscii(Peek()))
            FinishName(start, otherwise);
        return {start, at_};
    }
    /// One or more characters of names.
    void NameToken(const char *otherwise);
    /// All that is neither markup, a reference nor "]".
    void PlainText()
    {
        at_ = blocks_.EndOfText(at_);
        if (Peek() != '<')
            FinishPlainText();
    }
    void Reference(Where where);
    /// A value in quotes in which "<" is forbidden and references count.
    void AttributeValue()
    {
        const char quote = Peek();
        if (quote != '"' && quote != '\'')
            Fail("a value has no quotes");
        ++at_;
        SkipPlainValue(quote);
        while (Peek() != quote)
            StepInValue(quote);
        ++at_;
    }
    /// Any characters in quotes, without them.
    std::string_view Literal();
    /// What an entity of the document itself stands for, in quotes.
    void EntityText();
    void Comment();
    void CDataSection();
    void Instruction();
    /// At the start of the text alone. Whether it says that the document stands alone.
    bool Declaration();

    XmlEntities &Entities() { return entities_; }

    /// @throws XmlFault about this place: that the text is cut if it ends here.
    [[noreturn]] void Fail(std::string_view what) const;
    /// @throws XmlFault
    [[noreturn]] void FailAt(const char *place, std::string what, const char *otherPlace) const;
    [[noreturn]] void FailAt(const char *place, std::string what) const
    {
        FailAt(place, std::move(what), place);
    }

private:
    static bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
    static bool IsAsciiNameStart(char c)
    {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
    }

    void SkipPlainValue(char quote)
    {
        if (quote == '"')
            at_ = blocks_.EndOfValue(at_);
    }

    void RequireNotCut(std::string_view token);
    void FinishName(const char *start, const char *otherwise);
    void FinishPlainText();
    void StepInValue(char quote);
    char32_t CharacterAt(const char *&at) const;
    void OddCharacters();
    template <char... kStops> void SkipUpTo();
    void CheckEntity(std::string_view name, const char *place, Where where) const;
    void CharacterReference(const char *place);
    std::string_view PseudoAttribute(std::string_view name);

    const char *begin_;
    const char *at_;
    const char *end_;
    const char *construct_ = "";
    const char *start_;
    CharacterBlocks blocks_;
    XmlEntities entities_;
};

/// A name in a message: in quotes, and shortened if it is very long.
std::string Quoted(std::string_view name);

} // namespace marlet::project
