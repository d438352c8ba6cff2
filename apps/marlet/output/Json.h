#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <string>
#include <string_view>

namespace marlet::tool
{

/// Writes one JSON value on one line. Floating values have all their digits; those that JSON has no number
/// for are the texts "nan", "inf" and "-inf". Bytes that are no UTF-8 become U+FFFD.
class JsonWriter
{
public:
    JsonWriter &BeginObject() { return Open('{'); }
    JsonWriter &EndObject() { return Close('}'); }
    JsonWriter &BeginArray() { return Open('['); }
    JsonWriter &EndArray() { return Close(']'); }

    JsonWriter &Key(std::string_view key);
    JsonWriter &Value(std::string_view text);
    JsonWriter &Value(const std::string &text) { return Value(std::string_view(text)); }
    JsonWriter &Value(const char *text) { return Value(std::string_view(text)); }
    JsonWriter &Value(const project::WideString &text) { return Value(project::ToUtf8(text)); }
    JsonWriter &Value(const kytl::KyID &id) { return Value(id.ToNarrowString()); }
    JsonWriter &Value(bool value) { return Raw(value ? "true" : "false"); }
    JsonWriter &Value(int number) { return Raw(std::to_string(number)); }
    JsonWriter &Value(unsigned int number) { return Raw(std::to_string(number)); }
    JsonWriter &Value(unsigned long number) { return Raw(std::to_string(number)); }
    JsonWriter &Value(float number);
    JsonWriter &Value(double number);
    JsonWriter &Null() { return Raw("null"); }

    template <class T> JsonWriter &Member(std::string_view key, const T &value)
    {
        return Key(key).Value(value);
    }
    /// Null for the null ID.
    JsonWriter &Reference(std::string_view key, const kytl::KyID &id);

    const std::string &Text() const { return text_; }

private:
    JsonWriter &Open(char bracket);
    JsonWriter &Close(char bracket);
    JsonWriter &Raw(std::string_view text);
    void Separate();

    std::string text_;
    bool needsComma_ = false;
};

} // namespace marlet::tool
