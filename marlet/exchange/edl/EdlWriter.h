#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

class Project;
struct ExchangeOptions;

/// The list of the project's sequence. @throws OperationException if there is none
NarrowString EdlOfProject(const Project &project, const ExchangeOptions &options);

} // namespace marlet::project
