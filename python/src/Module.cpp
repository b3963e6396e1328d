#include "Bindings.hpp"

PYBIND11_MODULE(_fathom, module)
{
    using namespace Tarn::Python;
    module.doc() = "The framework's C++ libraries; use the package fathom.";
    bindMessages(module);
    bindValue(module);
    bindPlainValues();
    bindArrays(module);
    bindIntervals(module);
    bindGeometry(module);
    bindChoices(module);
    bindSignals(module);
    bindNetworks(module);
    bindContexts(module);
    bindStudies(module);
    bindObjects(module);
    bindTypes(module);
}
