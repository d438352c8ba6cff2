#include "EditScript.h"

#include "output/Failure.h"
#include "output/TextFile.h"

#include <iostream>
#include <iterator>
#include <sstream>

namespace marlet::tool
{

namespace
{

class WordReader
{
public:
    explicit WordReader(const std::string &line) : line_(line) {}

    std::vector<std::string> Read()
    {
        std::vector<std::string> words;
        while (SkipBlanks() && line_[at_] != '#')
            words.push_back(ReadWord());
        return words;
    }

private:
    static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

    bool SkipBlanks()
    {
        while (at_ < line_.size() && IsBlank(line_[at_]))
            ++at_;
        return at_ < line_.size();
    }

    std::string ReadWord()
    {
        std::string word;
        for (; at_ < line_.size() && !IsBlank(line_[at_]); ++at_) {
            if (line_[at_] == '"' || line_[at_] == '\'')
                ReadQuoted(word);
            else
                word += line_[at_];
        }
        return word;
    }

    /// Up to the other quotation mark.
    void ReadQuoted(std::string &word)
    {
        const char mark = line_[at_++];
        for (; at_ < line_.size() && line_[at_] != mark; ++at_) {
            if (mark == '"' && line_[at_] == '\\' && at_ + 1 < line_.size())
                ++at_;
            word += line_[at_];
        }
        if (at_ == line_.size())
            throw Failure("A quotation mark has no other one");
    }

    const std::string &line_;
    std::size_t at_ = 0;
};

} // namespace

std::string ScriptPlace(const std::string &path, std::size_t number)
{
    return (path == "-" ? "standard input" : path) + ":" + std::to_string(number);
}

std::vector<ScriptLine> ScriptLines(const std::string &path)
{
    std::istringstream text(path == "-" ? std::string(std::istreambuf_iterator<char>(std::cin), {})
                                        : project::ToUtf8(ReadTextFile(path)));
    std::vector<ScriptLine> lines;
    std::string line;
    for (std::size_t number = 1; std::getline(text, line); ++number) {
        try {
            if (std::vector<std::string> words = WordReader(line).Read(); !words.empty())
                lines.push_back({number, std::move(words)});
        } catch (const Failure &failure) {
            throw Failure(ScriptPlace(path, number), failure.what());
        }
    }
    return lines;
}

} // namespace marlet::tool
