#include <marlet/foundation/xml/XmlScanner.h>

#include <marlet/foundation/Utf8.h>
#include <marlet/foundation/xml/WellFormed.h>

#include <algorithm>
#include <cstdio>

namespace marlet::project
{

namespace
{

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The value of a digit, or the base for any other character.
char32_t DigitOf(char c, char32_t base)
{
    if (IsDigit(c))
        return static_cast<char32_t>(c - '0');
    const char lower = static_cast<char>(c | 0x20);
    return base == 16 && lower >= 'a' && lower <= 'f' ? static_cast<char32_t>(lower - 'a' + 10) : base;
}

std::string NameOfCharacter(char32_t c)
{
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned int>(c));
    return text;
}

bool IsPredefined(std::string_view entity)
{
    return entity == "lt" || entity == "gt" || entity == "amp" || entity == "quot" || entity == "apos";
}

bool IsVersion(std::string_view text)
{
    return text.size() > 2 && text.starts_with("1.") && std::ranges::all_of(text.substr(2), IsDigit);
}

bool IsEncodingName(std::string_view text)
{
    const auto isOfName = [](char c) {
        return IsLetter(c) || IsDigit(c) || c == '.' || c == '_' || c == '-';
    };
    return !text.empty() && IsLetter(text.front()) && std::ranges::all_of(text, isOfName);
}

} // namespace

std::string Quoted(std::string_view name)
{
    constexpr std::size_t longest = 80;
    if (name.size() <= longest)
        return '"' + std::string(name) + '"';
    std::size_t length = longest;
    while ((name[length] & 0xC0) == 0x80)
        --length;
    return '"' + std::string(name.substr(0, length)) + "...\"";
}

void XmlScanner::Fail(std::string_view what) const
{
    if (IsAtEnd())
        FailAt(at_, std::string("the text ends ") + construct_, start_);
    FailAt(at_, std::string(what));
}

void XmlScanner::FailAt(const char *place, std::string what, const char *otherPlace) const
{
    throw XmlFault{OffsetOf(place), std::move(what), OffsetOf(otherPlace), {}};
}

void XmlScanner::RequireNotCut(std::string_view token)
{
    if (!IsAtEnd() && token.starts_with({at_, end_})) {
        at_ = end_;
        Fail({});
    }
}

void XmlScanner::Expect(std::string_view token, const char *otherwise)
{
    if (!Take(token))
        Fail(otherwise);
}

void XmlScanner::ExpectBlanks()
{
    if (!SkipBlanks())
        Fail("a blank is missing");
}

/// The character at a place, which moves behind it.
char32_t XmlScanner::CharacterAt(const char *&at) const
{
    const char *const place = at;
    const char32_t c = TakeCharacter(at, end_);
    if (c == kReplacementCharacter && std::string_view(place, at) != "\xEF\xBF\xBD")
        FailAt(place, "the bytes are no UTF-8");
    return c;
}

void XmlScanner::NameToken(const char *otherwise)
{
    const char *const start = at_;
    for (at_ = blocks_.EndOfName(at_); !IsAscii(Peek()); at_ = blocks_.EndOfName(at_)) {
        const char *behind = at_;
        if (!IsXmlNameCharacter(CharacterAt(behind)))
            break;
        at_ = behind;
    }
    if (at_ == start)
        Fail(otherwise);
}

void XmlScanner::FinishName(const char *start, const char *otherwise)
{
    at_ = start;
    const char *second = start;
    if (!IsAtEnd() && !IsXmlNameStart(CharacterAt(second)))
        Fail(otherwise);
    NameToken(otherwise);
}

/// Characters beyond ASCII, which come in runs, or one that is looked at for another reason.
void XmlScanner::OddCharacters()
{
    do {
        const char *const place = at_;
        const char32_t c = CharacterAt(at_);
        if (!IsXmlCharacter(c))
            FailAt(place, NameOfCharacter(c) + " is no character of XML");
    } while (!IsAscii(Peek()));
}

void XmlScanner::FinishPlainText()
{
    while (!IsAtEnd() && *at_ != '<' && *at_ != '&' && *at_ != ']') {
        OddCharacters();
        at_ = blocks_.EndOfText(at_);
    }
}

/// Up to one of these characters, or the end of the text, for what there is little of.
template <char... kStops> void XmlScanner::SkipUpTo()
{
    while (!IsAtEnd() && ((*at_ != kStops) && ...))
        OddCharacters();
}

void XmlScanner::CharacterReference(const char *place)
{
    const char32_t base = Take('x') ? 16 : 10;
    const char *const digits = at_;
    char32_t c = 0;
    for (; DigitOf(Peek(), base) < base; ++at_)
        c = std::min<char32_t>(c * base + DigitOf(Peek(), base), 0x110000);
    if (at_ == digits && !IsAtEnd())
        FailAt(place, "a reference to a character has no number");
    Expect(';', "a reference does not end in \";\"");
    if (!IsXmlCharacter(c))
        FailAt(place, "a reference to a character that XML does not have");
}

void XmlScanner::CheckEntity(std::string_view name, const char *place, Where where) const
{
    if (where == Where::EntityText || IsPredefined(name))
        return;
    const auto entity = entities_.kinds.find(name);
    if (entity == entities_.kinds.end()) {
        if (entities_.areAllKnown)
            FailAt(place, "the entity " + Quoted(name) + " is not declared");
    } else if (entity->second == XmlEntities::Kind::Unparsed) {
        FailAt(place, "the entity " + Quoted(name) + " is no text");
    } else if (entity->second == XmlEntities::Kind::External && where == Where::Attribute) {
        FailAt(place, "the entity " + Quoted(name) + " of an attribute stands in another file");
    }
}

void XmlScanner::Reference(Where where)
{
    const char *const place = at_;
    ++at_;
    if (Take('#')) {
        CharacterReference(place);
        return;
    }
    const std::string_view name = Name("\"&\" begins no reference");
    Expect(';', "a reference does not end in \";\"");
    CheckEntity(name, place, where);
}

/// Where a value stops that does not end there.
void XmlScanner::StepInValue(char quote)
{
    if (IsAtEnd() || *at_ == '<')
        Fail("\"<\" stands in the value of an attribute");
    if (*at_ == '&')
        Reference(Where::Attribute);
    else
        OddCharacters();
    SkipPlainValue(quote);
}

std::string_view XmlScanner::Literal()
{
    const char quote = Peek();
    if (quote != '"' && quote != '\'')
        Fail("a value has no quotes");
    const char *const start = ++at_;
    for (;;) {
        SkipUpTo<'"', '\''>();
        if (IsAtEnd())
            Fail({});
        if (*at_++ == quote)
            return {start, at_ - 1};
    }
}

void XmlScanner::EntityText()
{
    const char quote = Peek();
    if (quote != '"' && quote != '\'')
        Fail("a value has no quotes");
    ++at_;
    for (;;) {
        SkipUpTo<'"', '\'', '&', '%'>();
        if (IsAtEnd() || *at_ == '%')
            Fail("\"%\" stands in a declaration");
        if (*at_ == '&')
            Reference(Where::EntityText);
        else if (*at_++ == quote)
            return;
    }
}

void XmlScanner::Comment()
{
    Enter("in a comment");
    Expect("<!--", "a comment begins wrongly");
    for (;;) {
        SkipUpTo<'-'>();
        if (IsAtEnd())
            Fail({});
        if (Take("-->"))
            return;
        if (IsBefore("--"))
            FailAt(at_, "\"--\" stands in a comment", start_);
        ++at_;
    }
}

void XmlScanner::CDataSection()
{
    Enter("in a CDATA section");
    Expect("<![CDATA[", "a CDATA section begins wrongly");
    do {
        SkipUpTo<']'>();
        if (IsAtEnd())
            Fail({});
    } while (!Take("]]>") && ++at_);
}

void XmlScanner::Instruction()
{
    Enter("in an instruction");
    at_ += 2;
    const std::string_view name = Name("an instruction has no name");
    if (IsAtEnd())
        Fail({}); // perhaps in the middle of the name
    constexpr std::string_view reserved = "xml";
    const auto lower = [](char c) { return c | 0x20; };
    if (std::ranges::equal(name, reserved, {}, lower))
        FailAt(start_, name == reserved ? "an XML declaration stands in the middle of the text"
                                        : "an instruction has the name " + Quoted(name));
    if (Peek() == '?') {
        Expect("?>", "a blank is missing");
        return;
    }
    ExpectBlanks();
    do {
        SkipUpTo<'?'>();
        if (IsAtEnd())
            Fail({});
    } while (!Take("?>") && ++at_);
}

std::string_view XmlScanner::PseudoAttribute(std::string_view name)
{
    Expect(name, "the XML declaration has something wrong in it");
    SkipBlanks();
    Expect('=', "the XML declaration has something wrong in it");
    SkipBlanks();
    return Literal();
}

bool XmlScanner::Declaration()
{
    Enter("in the XML declaration");
    at_ += 5;
    ExpectBlanks();
    if (!IsVersion(PseudoAttribute("version")))
        FailAt(start_, "the XML declaration has no version 1.x");
    bool isBlankBefore = SkipBlanks();
    if (isBlankBefore && Peek() == 'e') {
        if (!IsEncodingName(PseudoAttribute("encoding")))
            FailAt(start_, "the XML declaration names no encoding");
        isBlankBefore = SkipBlanks();
    }
    bool standsAlone = false;
    if (isBlankBefore && Peek() == 's') {
        const std::string_view text = PseudoAttribute("standalone");
        standsAlone = text == "yes";
        if (!standsAlone && text != "no")
            FailAt(start_, "the XML declaration says neither \"yes\" nor \"no\"");
        SkipBlanks();
    }
    Expect("?>", "the XML declaration has something wrong in it");
    return standsAlone;
}

} // namespace marlet::project
