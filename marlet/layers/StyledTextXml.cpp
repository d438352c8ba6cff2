// The elements "Tokens" and "Formats".

#include <marlet/layers/StyledText.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <limits>
#include <unordered_map>

namespace marlet::project
{

namespace
{

using Token = TextLayer::Token;
using Format = TextLayer::Format;
using FormatsByID = std::unordered_map<kytl::KyID, std::shared_ptr<Format>>;

template <class Xml, class Data> void FormatFields(Xml &xml, Data &format)
{
    xml.Attribute("ID", format.id);
    xml.Attribute("Size", format.size);
    xml.Attribute("StrokeWidth", format.strokeWidth);
    xml.Attribute("Tracking", format.tracking);
    xml.Attribute("Leading", format.leading);
    xml.Child("Family", format.family);
    xml.Child("Style", format.style);
    xml.Child("StrokeColor", format.strokeColor);
    xml.Child("FillColor", format.fillColor);
}

void WriteFormats(XmlWriter &writer, const TextLayer::FormatList &formats, const FormatIDs &used)
{
    const XmlElement element(writer, "Formats");
    for (const std::shared_ptr<Format> &format : formats) {
        if (!used.contains(format->id))
            continue;
        const XmlElement child(writer, "Format");
        FormatFields(writer, std::as_const(*format));
    }
}

void ReadFormats(const XmlCursor &parent, TextLayer::FormatList &formats)
{
    formats.Clear();
    const XmlCursor element = parent.Require("Formats");
    for (XmlCursor child = element.Find("Format"); !child.IsNull(); child = child.Next("Format")) {
        for (const char *attribute : {"ID", "Size", "StrokeWidth", "Tracking", "Leading"})
            child.RequireAttribute(attribute);
        for (const char *name : {"Family", "Style"})
            child.Require(name);
        const auto format = std::make_shared<Format>();
        FormatFields(std::as_const(child), *format);
        formats.Add(format);
    }
}

/// Adds the format that the token names to those in use.
void WriteToken(XmlWriter &writer, const Token &token, FormatIDs &used)
{
    const XmlElement element(writer, "Tk");
    writer.Attribute("Tp", token.type);
    writer.Attribute("ID", token.id);
    if (token.type == Token::kParagraph) {
        writer.Attribute("Jf", token.justification);
        return;
    }
    if (token.format) {
        writer.Attribute("Ft", token.format->id);
        used.insert(token.format->id);
    }
    writer.Attribute("Ch", static_cast<unsigned int>(token.character));
}

std::shared_ptr<Format> ReadFormat(const XmlCursor &token, const FormatsByID &formats)
{
    if (token.AttributeText("Ft").empty())
        return nullptr;
    kytl::KyID id;
    token.Attribute("Ft", id);
    const auto format = formats.find(id);
    if (format != formats.end())
        return format->second;
    if (!id.IsNull())
        TellLoad(LoadEntry::Severity::Loss, token, "the format of the character is not there", {id});
    return nullptr;
}

/// A null pointer for a token of a type that is not known.
std::shared_ptr<Token> ReadToken(const XmlCursor &element, const FormatsByID &formats)
{
    element.RequireAttribute("ID");
    element.RequireAttribute("Tp");
    kytl::KyID id;
    element.Attribute("ID", id);
    int type = 0;
    element.Attribute("Tp", type);
    if (type == Token::kCharacter) {
        unsigned int unit = 0;
        element.Attribute("Ch", unit);
        // What is out of range is no number, as elsewhere.
        const bool inRange = unit <= std::numeric_limits<unsigned short>::max();
        return TextLayer::CreateCharToken(static_cast<unsigned short>(inRange ? unit : 0),
                                          ReadFormat(element, formats), id);
    }
    if (type == Token::kParagraph) {
        TextLayer::JustificationType justification{};
        element.Attribute("Jf", justification);
        return TextLayer::CreateParagraphToken(justification, id);
    }
    return nullptr;
}

void ReadTokens(const XmlCursor &parent, TextLayer::TokenList &tokens, const TextLayer::FormatList &formats)
{
    tokens = {};
    FormatsByID formatsByID;
    for (const std::shared_ptr<Format> &format : formats)
        formatsByID.try_emplace(format->id, format);
    const XmlCursor element = parent.Require("Tokens");
    for (XmlCursor child = element.Find("Tk"); !child.IsNull(); child = child.Next("Tk"))
        if (const std::shared_ptr<Token> token = ReadToken(child, formatsByID))
            tokens.Append(token);
        else
            Disown(child);
}

/// Only formats in use are written.
void TellOfUnused(const XmlCursor &formats, const TextLayer::TokenList &tokens)
{
    const FormatIDs used = UsedFormats(TokenChain(tokens.first));
    for (XmlCursor format = formats.Find("Format"); !format.IsNull(); format = format.Next("Format")) {
        kytl::KyID id;
        format.Attribute("ID", id);
        if (!used.contains(id))
            TellLoad(LoadEntry::Severity::Loss, format,
                     "no character has this format; the next save leaves it out", {id});
    }
}

} // namespace

void WriteStyledText(XmlWriter &writer, const TokenChain &tokens, const kytl::KyID *last,
                     const TextLayer::FormatList &formats)
{
    FormatIDs used;
    {
        const XmlElement element(writer, "Tokens");
        for (const Token &token : tokens) {
            WriteToken(writer, token, used);
            if (last && token.id == *last)
                break;
        }
    }
    WriteFormats(writer, formats, used);
}

void ReadStyledText(const XmlCursor &parent, TextLayer::TokenList &tokens, TextLayer::FormatList &formats)
{
    ReadFormats(parent, formats);
    ReadTokens(parent, tokens, formats);
    if (LoadContext::Current())
        TellOfUnused(parent.Find("Formats"), tokens);
}

} // namespace marlet::project
