#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

class Project;
struct ExchangeOptions;

/// The sequence of the project. @throws OperationException if there is none, or no frame in it
NarrowString MltOfProject(const Project &project, const ExchangeOptions &options);

} // namespace marlet::project
