#pragma once

#include <string>
#include <string_view>

namespace marlet::tool
{

/// Standard output. What cannot be written is a failure of the command, so nothing gets lost unnoticed. Such
/// a failure is told of once.
class Output
{
public:
    /// @throws Failure
    void Write(std::string_view text);
    /// Writes the text and a line feed. @throws Failure
    void Line(std::string_view text);
    /// @throws Failure
    void Flush();

private:
    void Fail();

    bool failed_ = false;
};

/// The text with control characters as escapes, so that it stays on its line.
std::string OneLine(std::string_view text);

/// The text in quotation marks, on one line.
std::string Quoted(std::u16string_view text);

/// The text filled up with blanks to a number of characters.
std::string PadRight(std::string text, std::size_t width);
std::string PadLeft(std::string text, std::size_t width);

/// The shortest digits that read back as the same number.
std::string NumberText(float number);
std::string NumberText(double number);

/// "1 key frame", "2 key frames"
std::string Counted(std::size_t count, const std::string &noun);

} // namespace marlet::tool
