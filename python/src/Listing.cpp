#include "Listing.h"

#include "Bindings.h"

namespace marlet::python
{

namespace
{

py::object Item(const Listing &listing, const py::object &key)
{
    if (py::isinstance<py::str>(key)) {
        py::object found = listing.Get().Find(py::cast<WideString>(key));
        if (!found)
            throw py::key_error(py::cast<std::string>(key));
        return found;
    }
    // What is no index at all is told so by the list.
    if (!PyIndex_Check(key.ptr()))
        return listing.Get().All()[key];
    const auto index = PyNumber_AsSsize_t(key.ptr(), PyExc_IndexError);
    if (PyErr_Occurred())
        throw py::error_already_set();
    const auto count = static_cast<py::ssize_t>(listing.Get().Count());
    const auto place = index < 0 ? index + count : index;
    if (place < 0 || place >= count)
        throw py::index_error("There are only " + std::to_string(count));
    return listing.Get().At(static_cast<std::size_t>(place));
}

} // namespace

void BindListing(py::module_ &module)
{
    py::class_<Listing> type(
        module, "Listing",
        "A list of a project, as a sequence that shows what is there at the moment. Besides "
        "numbers and slices it takes names, and IDs, of which the first object is meant.");
    type.def("__len__", [](const Listing &listing) { return listing.Get().Count(); });
    type.def("__getitem__", &Item, py::arg("key"));
    type.def("__iter__", [](const Listing &listing) { return py::iter(listing.Get().All()); });
    type.def("__reversed__", [](const Listing &listing) {
        py::list all = listing.Get().All();
        all.attr("reverse")();
        return py::iter(all);
    });
    type.def("__contains__", [](const Listing &listing, const py::object &item) {
        if (py::isinstance<py::str>(item))
            return static_cast<bool>(listing.Get().Find(py::cast<WideString>(item)));
        return listing.Get().All().contains(item);
    });
    type.def("__repr__", [](const Listing &listing) {
        return "<marlet.Listing " + std::string(py::repr(listing.Get().All())) + ">";
    });
    type.def(
        "get",
        [](const Listing &listing, const WideString &name, const py::object &otherwise) {
            py::object found = listing.Get().Find(name);
            return found ? found : otherwise;
        },
        py::arg("name"), py::arg("default") = py::none(), "The first of that name or ID, or the default.");
    type.def(
        "index",
        [](const Listing &listing, const py::object &item) {
            return listing.Get().All().attr("index")(item);
        },
        py::arg("item"), "The place of an object. Raises ValueError if it is not in the list.");
    type.def(
        "count",
        [](const Listing &listing, const py::object &item) {
            return listing.Get().All().attr("count")(item);
        },
        py::arg("item"), "How often an object is in the list.");
}

} // namespace marlet::python
