#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class Project;
struct ExchangeOptions;

/// The text of the project's sequence. What the format has no word for stands in its metadata, and is told.
/// @throws OperationException if there is no sequence, or its frame rate is none
NarrowString WriteOtio(const std::shared_ptr<Project> &project, const ExchangeOptions &options);

} // namespace marlet::project
