#pragma once

#include "Handles.h"

namespace marlet::python
{

/// A project that was loaded or made, for Python.
ProjectHandle Opened(const std::shared_ptr<Project> &project,
                     const std::shared_ptr<AbstractPluginManager> &plugins,
                     const std::shared_ptr<LoadReport> &report);

/// What shows an asset is in no file, and operations want to find it.
void FillInstances(const Project &project);

} // namespace marlet::python
