#include "Errors.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/operations/OperationException.h>

#include <boost/variant/get.hpp>

#include <stdexcept>

namespace marlet::python
{

namespace
{

using namespace py::literals;

py::object ClassOf(const char *error)
{
    return py::module_::import("marlet.errors").attr(error);
}

void Raise(const char *error, const char *message, const py::dict &details = {})
{
    const py::object type = ClassOf(error);
    const py::object raised = type(message, **details);
    PyErr_SetObject(type.ptr(), raised.ptr());
}

void Translate(std::exception_ptr thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const LoadFailure &error) {
        Raise(error.Error(), error.what(),
              py::dict("path"_a = error.path, "line"_a = error.line, "column"_a = error.column,
                       "place"_a = error.place));
    } catch (const Failure &error) {
        Raise(error.Error(), error.what());
    } catch (const FileException &error) {
        Raise("FileError", error.what(), py::dict("path"_a = error.Path(), "reason"_a = error.Reason()));
    } catch (const OperationException &error) {
        Raise("OperationError", error.what());
    } catch (const XmlParseException &error) {
        Raise("LoadError", error.what());
    } catch (const InvalidProjectVersionException &error) {
        Raise("VersionError", error.what());
    } catch (const MissingPluginException &error) {
        Raise("PluginError", error.what());
    } catch (const InvalidPluginVersionException &error) {
        Raise("PluginError", error.what());
    } catch (const ProjectException &error) {
        Raise("LoadError", error.what());
    } catch (const MessageException &error) {
        Raise("Error", error.what());
    } catch (const boost::bad_get &) {
        PyErr_SetString(PyExc_TypeError, "A property or a key frame holds a value of another type");
    } catch (const std::invalid_argument &error) {
        PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const std::out_of_range &error) {
        PyErr_SetString(PyExc_LookupError, error.what());
    } catch (const std::logic_error &error) {
        Raise("Error", error.what());
    }
}

} // namespace

void TranslateErrors()
{
    py::register_local_exception_translator(&Translate);
}

} // namespace marlet::python
