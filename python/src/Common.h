#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

namespace marlet::python
{

namespace py = pybind11;
using namespace project;

} // namespace marlet::python
