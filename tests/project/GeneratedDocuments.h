#pragma once

#include <marlet/project/Project.h>

#include <memory>

/// A project in which every element that the library writes stands at least once, filled with noise.
std::shared_ptr<marlet::project::Project> NoisyProject(unsigned int seed);
