#pragma once

#include <pybind11/pybind11.h>

#include <loam/Chunk.hpp>

namespace Tarn::Python {

namespace py = pybind11;

using AnyChunk = Loam::StrongPtr<Loam::ChunkBase, Loam::ChunkBase>;

/// Returns a read-only numpy array on the memory of \p chunk, which it keeps alive; None for null.
/// A chunk of other elements becomes an array of bytes.
py::object arrayOf(const AnyChunk& chunk);

/// Returns the chunk that an array of `fathom.array` is on, or a copy of another array; null for
/// None. The array becomes read-only, because its memory is shared from now on.
/// \throw py::type_error for elements that no chunk has.
AnyChunk chunkOf(const py::object& array);

} // namespace Tarn::Python
