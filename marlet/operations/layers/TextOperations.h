#pragma once

#include <marlet/layers/TextLayer.h>

#include <memory>
#include <string>
#include <vector>

namespace marlet::project
{

class Project;

/// A text as a string: UTF-16, with u'\n' for a break between paragraphs. Positions and counts are of its
/// units.
struct FormattedText {
    struct Run {
        std::size_t first = 0;
        std::size_t count = 0;
        /// Its ID is that of the table in a text that was read, and of no matter in one that is set.
        TextLayer::Format format;
    };

    WideString text;
    /// In order. Characters outside of them have no format; breaks never have one.
    std::vector<Run> formats;
    /// Of each break, in order; what lacks one gets 0.
    std::vector<TextLayer::JustificationType> justifications;
};

/// A part of a text, by default all that follows.
struct TextRange {
    std::size_t first = 0;
    std::size_t count = WideString::npos;
};

// The text of a layer, changed as one Edit each. What is put in as a plain string takes the format of the
// character before it, or else behind it, and its breaks the justification of the break before them, or else
// behind. Formats that come out of use leave the layer's table. A selection or cursor on what goes is
// cleared.
//
// Null pointers are std::invalid_argument. A range beyond the text, or with an end inside of a pair of
// surrogates, is an OperationException. Belongs to the thread that edits the project.

MARLET_EXPORT FormattedText ReadText(const TextLayer &layer, const TextRange &range = {});

MARLET_EXPORT void SetText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                           const WideString &text);
MARLET_EXPORT void SetText(const std::shared_ptr<Project> &project, const std::shared_ptr<TextLayer> &layer,
                           const FormattedText &text);
MARLET_EXPORT void InsertText(const std::shared_ptr<Project> &project,
                              const std::shared_ptr<TextLayer> &layer, std::size_t position,
                              const WideString &text);
MARLET_EXPORT void InsertText(const std::shared_ptr<Project> &project,
                              const std::shared_ptr<TextLayer> &layer, std::size_t position,
                              const FormattedText &text);
/// An empty text removes the range.
MARLET_EXPORT void ReplaceText(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<TextLayer> &layer, const TextRange &range,
                               const WideString &text);
MARLET_EXPORT void ReplaceText(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<TextLayer> &layer, const TextRange &range,
                               const FormattedText &text);
MARLET_EXPORT void SetTextFormat(const std::shared_ptr<Project> &project,
                                 const std::shared_ptr<TextLayer> &layer, const TextRange &range,
                                 const TextLayer::Format &format);
/// Of the breaks in the range.
MARLET_EXPORT void SetJustification(const std::shared_ptr<Project> &project,
                                    const std::shared_ptr<TextLayer> &layer, const TextRange &range,
                                    TextLayer::JustificationType justification);

} // namespace marlet::project
