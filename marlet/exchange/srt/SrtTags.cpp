#include <marlet/exchange/srt/SrtTags.h>

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace marlet::project
{

namespace
{

constexpr std::size_t kLongestTag = 100;

/// The tag that a text begins with, without its brackets and in small letters; empty for none.
NarrowString TagAt(std::u16string_view text)
{
    const char16_t closing = text[0] == u'<' ? u'>' : text[0] == u'{' ? u'}' : u'\0';
    const std::size_t end = closing ? text.substr(0, kLongestTag).find(closing) : 0;
    if (end == 0 || end == std::u16string_view::npos)
        return {};
    NarrowString tag = ToUtf8(text.substr(1, end - 1));
    std::ranges::transform(tag, tag.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return tag;
}

std::optional<std::uint32_t> ColorIn(const NarrowString &tag)
{
    const std::size_t sign = tag.find('#');
    std::uint32_t color = 0;
    if (tag.find("color") == NarrowString::npos || sign == NarrowString::npos || sign + 7 > tag.size())
        return std::nullopt;
    const char *const digits = tag.data() + sign + 1;
    return std::from_chars(digits, digits + 6, color, 16).ptr == digits + 6 ? std::optional(color)
                                                                            : std::nullopt;
}

class TagReading
{
public:
    SrtTagged Run(std::u16string_view text)
    {
        while (!text.empty()) {
            const NarrowString tag = TagAt(text);
            if (!tag.empty() && Apply(tag, text[0] == u'{')) {
                text.remove_prefix(text.find(text[0] == u'<' ? u'>' : u'}') + 1);
            } else {
                Add(text[0]);
                text.remove_prefix(1);
            }
        }
        return std::move(result_);
    }

private:
    /// False for what is no tag.
    bool Apply(const NarrowString &tag, bool isInBraces)
    {
        const bool isEnd = tag[0] == '/';
        const NarrowString name = tag.substr(isEnd ? 1 : 0, tag.find(' ', 1) - (isEnd ? 1 : 0));
        if (name == "b")
            bold_ = std::max(0, bold_ + (isEnd ? -1 : 1));
        else if (name == "i")
            italic_ = std::max(0, italic_ + (isEnd ? -1 : 1));
        else if (name == "font" && isEnd)
            TakeBackColor();
        else if (name == "font")
            AddColor(tag);
        else if (name == "u" || name == "s" || (isInBraces && tag[0] == '\\'))
            AddUnknown(tag, isInBraces);
        else
            return false;
        return true;
    }

    void AddColor(const NarrowString &tag)
    {
        const auto color = ColorIn(tag);
        if (!color)
            AddUnknown(tag, false);
        colors_.push_back(color ? color : CurrentColor());
    }

    void TakeBackColor()
    {
        if (!colors_.empty())
            colors_.pop_back();
    }

    std::optional<std::uint32_t> CurrentColor() const
    {
        return colors_.empty() ? std::nullopt : colors_.back();
    }

    void AddUnknown(const NarrowString &tag, bool isInBraces)
    {
        if (tag[0] != '/')
            result_.unknown.push_back(isInBraces ? "{" + tag + "}" : "<" + tag + ">");
    }

    void Add(char16_t unit)
    {
        const SrtStyle style{bold_ > 0, italic_ > 0, CurrentColor()};
        const std::size_t place = result_.text.size();
        result_.text += unit;
        if (style == SrtStyle())
            return;
        if (!result_.runs.empty() && result_.runs.back().style == style &&
            result_.runs.back().first + result_.runs.back().count == place)
            ++result_.runs.back().count;
        else
            result_.runs.push_back({place, 1, style});
    }

    SrtTagged result_;
    int bold_ = 0;
    int italic_ = 0;
    std::vector<std::optional<std::uint32_t>> colors_;
};

} // namespace

SrtTagged WithoutTags(std::u16string_view text)
{
    return TagReading().Run(text);
}

WideString WithTags(const Subtitle &subtitle)
{
    WideString text;
    std::size_t at = 0;
    for (const SrtRun &run : subtitle.runs) {
        text += subtitle.text.substr(at, run.first - at);
        at = run.first + run.count;
        const auto &[isBold, isItalic, color] = run.style;
        char font[32] = "";
        if (color)
            std::snprintf(font, sizeof font, "<font color=\"#%06x\">", *color & 0xFFFFFF);
        text += FromUtf8(font);
        text += isBold ? u"<b>" : u"";
        text += isItalic ? u"<i>" : u"";
        text += subtitle.text.substr(run.first, run.count);
        text += isItalic ? u"</i>" : u"";
        text += isBold ? u"</b>" : u"";
        text += color ? u"</font>" : u"";
    }
    return text + subtitle.text.substr(at);
}

} // namespace marlet::project
