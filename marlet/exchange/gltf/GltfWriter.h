#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class Project;
struct ExchangeOptions;

/// A composition with its cameras, or the one that is named. @throws OperationException if there is none
NarrowString GltfOfProject(const std::shared_ptr<Project> &project, const ExchangeOptions &options);

} // namespace marlet::project
