#pragma once

#include <marlet/foundation/LoadReport.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace marlet::project
{

struct RecoveredElement;

/// Something that is wrong with a text.
struct TextFault {
    LoadEntry::Severity severity;
    std::size_t place = 0; ///< in bytes
    const RecoveredElement *element = nullptr;
    std::string what;
};

/// As many of them as a report tells of; of the others how many there are.
class TextFaults
{
public:
    void Add(TextFault fault)
    {
        if (first_.size() < LoadReport::kMostEntries)
            first_.push_back(std::move(fault));
        else
            ++others_[static_cast<std::size_t>(fault.severity)];
    }
    void Add(const TextFaults &more)
    {
        for (const TextFault &fault : more.first_)
            Add(fault);
        for (std::size_t severity = 0; severity < others_.size(); ++severity)
            others_[severity] += more.others_[severity];
    }

    std::vector<TextFault> &First() { return first_; }
    std::size_t Others(LoadEntry::Severity severity) const
    {
        return others_[static_cast<std::size_t>(severity)];
    }

private:
    std::vector<TextFault> first_;
    std::array<std::size_t, LoadEntry::kSeverities> others_{};
};

} // namespace marlet::project
