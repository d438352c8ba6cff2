#pragma once

#include <marlet/exchange/edl/EdlText.h>

#include <memory>

namespace marlet::project
{

class Project;

/// A new project with the sequence of a list.
std::shared_ptr<Project> ProjectOfEdl(const EdlList &list, const ExchangeOptions &options);

} // namespace marlet::project
