#pragma once

#include "ToolTest.h"

#include <marlet/editor/EditorSequence.h>

namespace marlet::test
{

/// The tool on a sequence of 250 frames, "cut.xml". "Main" has 100 frames of its own, "Red" none.
class SequenceToolTest : public ToolTest
{
protected:
    SequenceToolTest();

    /// Runs "marlet edit cut.xml OUT" and these words.
    ToolRun Edit(const std::string &out, std::vector<std::string> words) const;
    /// The tracks "Video 1", "Spare" and "Audio 1" of a file, each by time. An object is "START-END@FIRST"
    /// with the first frame of its asset, "*" if it and another one are partners, "<" before it and ">"
    /// behind it for a transition of its own. Between two objects stands "=" for a transition that both hold
    /// and that names both,
    /// "|" for none, and "?" for one that is out of step.
    std::string Layout(const std::string &name) const;

    std::shared_ptr<EditorSequence> sequence_;
};

} // namespace marlet::test
