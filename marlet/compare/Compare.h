#pragma once

#include <marlet/compare/Difference.h>

namespace marlet::project
{

class Project;

/// All differences between two projects, in the order of the first. What has an ID is compared with what has
/// the same ID, wherever it stands among its neighbours, a key frame with that at the same time. Nothing that
/// a file holds is left out, so Apply makes the one project into the other.
///
/// Changes neither project; both must stay as they are meanwhile. Needs as much memory as their texts in
/// UTF-8, or little more.
MARLET_EXPORT std::vector<Difference> Compare(const Project &before, const Project &after);

/// The same for texts as Project::Serialize and ProjectFile::TextFor make them.
/// @throws XmlParseException if one is not whole
MARLET_EXPORT std::vector<Difference> CompareTexts(const WideString &before, const WideString &after);

/// The first text, or another one that has the elements that are meant, with these differences. What is
/// there already, and what is gone already, is passed over.
/// @throws XmlParseException if the text is not whole; OperationException if an element that changed is not
/// there
MARLET_EXPORT WideString ApplyToText(const WideString &text, const std::vector<Difference> &differences);

} // namespace marlet::project
