#pragma once

#include <tests/checks/CheckedProject.h>

#include <marlet/history/EditHistory.h>

#include <functional>
#include <string>

namespace marlet::test
{

/// The layers of a composition from the top of the stack on, one a line:
///
///     Picture [0..100) Red+5 parent=Point effect>Title tracker>Point
///
/// "+5" is the first frame of the asset that is shown. "?" stands for a link that leads nowhere, "!" for an
/// owner, an effect's or a mask's, that is not the true one.
std::string DrawnLayers(const CheckedProject &document, const CompositionAsset &composition);

/// The folders with their assets, one folder a line, and behind each asset how many instances it lists.
std::string DrawnFolders(const Project &project);

/// Looks whether an operation keeps what all of them promise: it is one step, which undo takes back byte for
/// byte and redo makes again, nothing of it is unannounced, and Validate finds nothing more than before but
/// notes.
void Perform(const std::shared_ptr<Project> &project, const std::function<void()> &operation);

/// Looks whether it is refused with these words and changes nothing.
void Refuse(const std::shared_ptr<Project> &project, const std::function<void()> &operation,
            const std::string &words);

} // namespace marlet::test
