#include "Verb.h"

#include "output/Failure.h"

#include <algorithm>
#include <sstream>

namespace marlet::tool
{

namespace
{

constexpr std::size_t kFiles = 2; // before the verb

std::vector<const std::vector<Verb> *> Pages()
{
    return {&SequenceVerbs(), &AssetVerbs(), &LayerVerbs(), &CurveVerbs(), &ContentVerbs()};
}

const Verb &FindVerb(const std::vector<std::string> &operands)
{
    const std::string &word = operands[kFiles];
    const std::string two = operands.size() > kFiles + 1 ? word + " " + operands[kFiles + 1] : word;
    std::vector<std::string> second;
    for (const std::vector<Verb> *page : Pages())
        for (const Verb &verb : *page) {
            if (verb.name == word || verb.name == two)
                return verb;
            if (verb.name.starts_with(word + " "))
                second.push_back(verb.name.substr(word.size() + 1));
        }
    if (second.empty())
        throw UsageError("there is no operation \"" + word + "\"");
    throw UsageError(NoSuch("operation", two, second).what());
}

} // namespace

std::vector<std::string> Verb::Operands() const
{
    std::vector<std::string> operands;
    std::istringstream stream(words);
    for (std::string word; stream >> word && std::isupper(static_cast<unsigned char>(word[0]));)
        operands.push_back(word);
    return operands;
}

bool Verb::Takes(const std::string &option) const
{
    if (words.find("RIPPLE") != std::string::npos && (option == "--ripple" || option == "--tracks"))
        return true;
    const auto isPartOfName = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '-'; };
    for (std::size_t at = words.find(option); at != std::string::npos; at = words.find(option, at + 1))
        if (at + option.size() == words.size() || !isPartOfName(words[at + option.size()]))
            return true;
    return false;
}

const Verb &ChosenVerb(const Arguments &arguments)
{
    const std::vector<std::string> &operands = arguments.Operands();
    if (operands.size() < kFiles + 1)
        throw UsageError("an operation is missing");
    const Verb &verb = FindVerb(operands);
    const std::vector<std::string> wanted = verb.Operands();
    const std::size_t given = operands.size() - kFiles - verb.NameWords();
    if (given < wanted.size())
        throw UsageError(verb.name + " needs " + wanted[given]);
    if (given > wanted.size())
        throw UsageError("\"" + operands[operands.size() - given + wanted.size()] + "\" is one too many");
    for (const OptionSpec &option : EditCommand().options)
        if (option.name != "--dry-run" && option.name != "--json" && arguments.Has(option.name) &&
            !verb.Takes(option.name))
            throw UsageError(option.name + " does not go with " + verb.name);
    return verb;
}

std::string VerbsSynopsis()
{
    std::string synopsis;
    for (const std::vector<Verb> *page : Pages())
        for (const Verb &verb : *page)
            synopsis += "FILE OUT " + verb.name + " " + verb.words + "\n";
    return synopsis;
}

} // namespace marlet::tool
