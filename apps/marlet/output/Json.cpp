#include "Json.h"

#include <charconv>
#include <cmath>

namespace marlet::tool
{

namespace
{

std::string Quoted(std::string_view text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char c : project::ToUtf8(project::FromUtf8(text))) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            quoted.append({'\\', c});
        else if (c == '\n')
            quoted += "\\n";
        else if (c == '\r')
            quoted += "\\r";
        else if (c == '\t')
            quoted += "\\t";
        else if (byte < 0x20)
            quoted.append({'\\', 'u', '0', '0', kDigits[byte >> 4], kDigits[byte & 15]});
        else
            quoted += c;
    }
    return quoted + '"';
}

template <class Real> std::string RealText(Real number, int digits)
{
    if (std::isnan(number))
        return "\"nan\"";
    if (std::isinf(number))
        return number > 0 ? "\"inf\"" : "\"-inf\"";
    char buffer[64];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, digits);
    return std::string(buffer, result.ptr);
}

} // namespace

JsonWriter &JsonWriter::Key(std::string_view key)
{
    Separate();
    text_ += Quoted(key) + ':';
    needsComma_ = false;
    return *this;
}

JsonWriter &JsonWriter::Value(std::string_view text)
{
    return Raw(Quoted(text));
}

JsonWriter &JsonWriter::Value(float number)
{
    return Raw(RealText(number, 9));
}

JsonWriter &JsonWriter::Value(double number)
{
    return Raw(RealText(number, 17));
}

JsonWriter &JsonWriter::Reference(std::string_view key, const kytl::KyID &id)
{
    Key(key);
    return id.IsNull() ? Null() : Value(id);
}

JsonWriter &JsonWriter::Open(char bracket)
{
    Separate();
    text_ += bracket;
    needsComma_ = false;
    return *this;
}

JsonWriter &JsonWriter::Close(char bracket)
{
    text_ += bracket;
    needsComma_ = true;
    return *this;
}

JsonWriter &JsonWriter::Raw(std::string_view text)
{
    Separate();
    text_ += text;
    needsComma_ = true;
    return *this;
}

void JsonWriter::Separate()
{
    if (needsComma_)
        text_ += ',';
}

} // namespace marlet::tool
