#include "Bindings.hpp"
#include "Networks.hpp"

#include <tarn/study/Study.hpp>

#include <pybind11/stl.h>

#include <string>
#include <vector>

namespace Tarn::Python {

namespace {

// Returns why cases that vary an input must be evaluated one at a time, or None.
py::object orderReason(Network& network)
{
    const std::optional<std::string> reason = network.use([](Session& session) {
        return Study{session, Sweep{}}.orderReason({});
    });
    return reason ? py::object(toStr(*reason)) : py::none();
}

} // namespace

void bindStudies(py::module_& module)
{
    module.def("order_reason", orderReason);
}

} // namespace Tarn::Python
