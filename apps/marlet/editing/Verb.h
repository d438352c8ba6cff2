#pragma once

#include "options/Arguments.h"

#include <string>
#include <vector>

namespace marlet::tool
{

class Editing;

/// One thing that `edit` does. What follows its name is written as people read it, and says what may follow:
/// operands are words in capitals, options begin with dashes, brackets stand round what may be left out, and
/// RIPPLE stands for "--ripple [--tracks T,T]".
struct Verb {
    std::string name; ///< one word, or two: "layer add"
    std::string words;
    void (*run)(Editing &);

    std::size_t NameWords() const { return name.find(' ') == std::string::npos ? 1 : 2; }
    std::vector<std::string> Operands() const;
    bool Takes(const std::string &option) const;
};

// A page of verbs each.

const std::vector<Verb> &SequenceVerbs();
const std::vector<Verb> &AssetVerbs();
const std::vector<Verb> &LayerVerbs();
const std::vector<Verb> &CurveVerbs();
const std::vector<Verb> &ContentVerbs();

/// The verb that stands behind the two files. @throws UsageError also for what does not go with it
const Verb &ChosenVerb(const Arguments &arguments);

/// How all of them are called, a line each, in pages.
std::string VerbsSynopsis();

} // namespace marlet::tool
