#pragma once

#include "Command.h"

#include <map>
#include <string>
#include <vector>

namespace marlet::tool
{

/// From first to last, both included.
struct IntegerRange {
    int first = 0;
    int last = 0;
};

/// Pixels from the middle of a picture, Y up.
struct PixelPosition {
    float x = 0;
    float y = 0;
};

struct PixelSize {
    int width = 0;
    int height = 0;
};

/// The words behind a command's name, taken apart: operands, and options written "--name VALUE" or
/// "--name=VALUE". Everything behind "--" is an operand.
class Arguments
{
public:
    /// @throws UsageError for an option that the command does not have, one given twice, one without its
    /// value, and too few or too many operands
    Arguments(const CommandSpec &command, const std::vector<std::string> &words);

    const std::vector<std::string> &Operands() const { return operands_; }
    const std::string &Operand(std::size_t index) const { return operands_.at(index); }
    bool Has(const std::string &option) const { return options_.count(option) > 0; }

    // Each of these throws UsageError if the option was not given or its value is malformed.

    const std::string &Text(const std::string &option) const;
    /// That of a file or folder, which is not empty.
    const std::string &Path(const std::string &option) const;
    /// That of a file to write, which is none of the operands: no picture takes the place of its project.
    const std::string &NewPath(const std::string &option) const;
    int Integer(const std::string &option) const;
    double Real(const std::string &option) const;
    float Float(const std::string &option) const;
    /// "0..100", "0,5,7" or both mixed, in the order given.
    std::vector<IntegerRange> Ranges(const std::string &option) const;
    /// "12.5,-40"
    PixelPosition Position(const std::string &option) const;
    /// "640x480"
    PixelSize Size(const std::string &option) const;
    /// One with a limit to both sides.
    PixelSize Size(const std::string &option, int longestSide) const;

private:
    std::size_t TakeOption(const CommandSpec &command, const std::vector<std::string> &words,
                           std::size_t index);

    std::vector<std::string> operands_;
    std::map<std::string, std::string> options_;
};

} // namespace marlet::tool
