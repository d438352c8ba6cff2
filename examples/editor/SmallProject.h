#pragma once

#include <marlet/project/Project.h>

#include <memory>

namespace editor
{

/// A title above a red card in front of a blue backdrop, four seconds of them. The card ends half way.
std::shared_ptr<marlet::project::Project> MakeSmallProject();

} // namespace editor
