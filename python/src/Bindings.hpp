#pragma once

#include <pybind11/pybind11.h>

// One function per source file adds its part to the extension module.

namespace Tarn::Python {

namespace py = pybind11;

void bindValue(py::module_& module);
void bindPlainValues();
void bindArrays(py::module_& module);
void bindIntervals(py::module_& module);
void bindGeometry(py::module_& module);
void bindChoices(py::module_& module);
void bindSignals(py::module_& module);
void bindMessages(py::module_& module);
void bindNetworks(py::module_& module);
void bindContexts(py::module_& module);
void bindStudies(py::module_& module);
void bindObjects(py::module_& module);
void bindTypes(py::module_& module);

} // namespace Tarn::Python
