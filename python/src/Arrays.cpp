#include "Arrays.hpp"

#include "Bindings.hpp"
#include "Conversions.hpp"
#include "Texts.hpp"

#include <fathom/Chunk.hpp>

#include <pybind11/numpy.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>

// Number arrays are numpy arrays on the memory of chunks. A chunk in a network is shared, so its
// arrays are read-only. New arrays of `fathom.array` are on chunks, too: they are writable until
// they are assigned to an input, which then has their memory.

namespace Tarn::Python {

namespace {

template<class T>
using Array = StrongPtr<Loam::TypedChunk<T>, Loam::ChunkBase>;

// The name of the capsules that keep chunks alive.
constexpr char capsuleName[] = "fathom chunk";

py::array onMemory(const AnyChunk& chunk, const py::dtype& type, std::size_t size, bool isWritable)
{
    const py::capsule owner{new AnyChunk(chunk), capsuleName, [](PyObject* capsule) {
                                delete static_cast<AnyChunk*>(PyCapsule_GetPointer(capsule, capsuleName));
                            }};
    py::array array{type, {static_cast<py::ssize_t>(size)}, {type.itemsize()}, chunk->memory(), owner};
    if (!isWritable)
        array.attr("flags").attr("writeable") = false;
    return array;
}

template<class T>
py::array onMemory(const Array<T>& chunk, bool isWritable)
{
    return onMemory(AnyChunk{chunk}, py::dtype::of<T>(), chunk->size(), isWritable);
}

// Returns the chunk that the whole array is on, or null.
AnyChunk chunkBelow(const py::array& array)
{
    py::object owner = array;
    while (py::isinstance<py::array>(owner))
        owner = owner.attr("base");
    if (!PyCapsule_IsValid(owner.ptr(), capsuleName))
        return {};
    const AnyChunk& chunk = *static_cast<AnyChunk*>(PyCapsule_GetPointer(owner.ptr(), capsuleName));
    const bool isWhole = array.ndim() == 1 && array.data() == chunk->memory()
                         && static_cast<std::size_t>(array.size()) == chunk->size()
                         && static_cast<std::size_t>(array.itemsize()) == chunk->elementSize()
                         && (array.flags() & py::array::c_style) != 0;
    return isWhole ? chunk : AnyChunk{};
}

void makeReadOnly(const py::array& array)
{
    for (py::object each = array; py::isinstance<py::array>(each); each = each.attr("base"))
        each.attr("flags").attr("writeable") = false;
}

std::string nameOf(const py::dtype& type)
{
    return py::str(py::handle(type)).cast<std::string>();
}

// Refuses numbers that the elements cannot represent.
template<class T>
void checkLimits(const py::array& array)
{
    if (array.size() == 0)
        return;
    if constexpr (std::floating_point<T>) {
        // Infinite numbers and NaN exist in every precision.
        const py::module_ numpy = py::module_::import("numpy");
        const py::object finite = array[numpy.attr("isfinite")(array)];
        const double limit = static_cast<double>(std::numeric_limits<T>::max());
        const auto isTooLarge = numpy.attr("any")(numpy.attr("abs")(finite).attr("__gt__")(limit));
        if (isTooLarge.cast<bool>())
            throw py::value_error("found numbers that are too large for single precision");
    } else {
        const py::object least = array.attr("min")();
        const py::object most = array.attr("max")();
        const auto low = py::int_(least);
        const auto high = py::int_(most);
        if (low < py::int_(std::numeric_limits<T>::min()) || high > py::int_(std::numeric_limits<T>::max()))
            throw py::value_error("found integers from " + printed(low) + " to " + printed(high) + ", expected "
                                  + std::to_string(std::numeric_limits<T>::min()) + " to "
                                  + std::to_string(std::numeric_limits<T>::max()));
    }
}

// Returns a chunk with the numbers, converted to its elements without a check.
template<class T>
Array<T> copied(const py::array& array)
{
    const Array<T> chunk = Loam::TypedChunk<T>::createNewChunk(static_cast<std::size_t>(array.size()), false);
    if (chunk->size() > 0)
        py::module_::import("numpy").attr("copyto")(onMemory<T>(chunk, true), array, py::arg("casting") = "unsafe");
    return chunk;
}

template<class T>
Array<T> chunkOfNumbers(const py::array& array)
{
    const char kind = array.dtype().kind();
    const bool fits = kind == 'i' || kind == 'u' || (kind == 'f' && (std::floating_point<T> || array.size() == 0));
    if (!fits)
        throw py::type_error("found an array of " + nameOf(array.dtype()) + ", expected one of "
                             + nameOf(py::dtype::of<T>()));
    if (array.ndim() != 1)
        throw py::value_error("found an array of " + std::to_string(array.ndim()) + " dimensions, expected one of 1");
    if (array.dtype().equal(py::dtype::of<T>())) {
        if (const AnyChunk chunk = chunkBelow(array)) {
            makeReadOnly(array);
            return Array<T>{chunk};
        }
    } else {
        checkLimits<T>(array);
    }
    return copied<T>(array);
}

template<class T>
py::object toPython(const Array<T>& chunk)
{
    return onMemory<T>(chunk ? chunk : Array<T>{Loam::TypedChunk<T>::createNewChunk(0)}, false);
}

template<class T>
std::optional<Array<T>> fromPython(py::handle object)
{
    const bool isSequence = py::isinstance<py::sequence>(object) || py::hasattr(object, "__array__");
    if (!isSequence || py::isinstance<py::str>(object) || py::isinstance<py::bytes>(object))
        return std::nullopt;
    const py::array array = py::array::ensure(object);
    if (!array || array.ndim() == 0)
        return std::nullopt;
    return chunkOfNumbers<T>(array);
}

// Calls the function with an element type that a chunk can have.
template<class Function>
auto withElement(const py::dtype& type, Function&& function)
{
    if (type.equal(py::dtype::of<double>()))
        return function(double{});
    if (type.equal(py::dtype::of<float>()))
        return function(float{});
    if (type.equal(py::dtype::of<std::int64_t>()))
        return function(0LL);
    if (type.equal(py::dtype::of<int>()))
        return function(int{});
    if (type.equal(py::dtype::of<short>()))
        return function(short{});
    throw py::type_error("found elements of type " + nameOf(type)
                         + ", expected float64, float32, int64, int32 or int16");
}

py::array zeros(std::size_t size, const py::object& dtype)
{
    return withElement(py::dtype::from_args(dtype), [&](auto element) {
        using T = decltype(element);
        return onMemory<T>(Loam::TypedChunk<T>::createNewChunk(size), true);
    });
}

py::array newArray(const py::object& numbers, const py::object& dtype)
{
    const py::array array = py::array::ensure(numbers);
    if (!array)
        throw py::type_error("found " + printed(numbers) + ", expected numbers");
    const py::dtype type = dtype.is_none() ? array.dtype() : py::dtype::from_args(dtype);
    return withElement(type, [&](auto element) {
        using T = decltype(element);
        if (array.dtype().equal(py::dtype::of<T>())) {
            if (array.ndim() != 1)
                throw py::value_error("found an array of " + std::to_string(array.ndim())
                                      + " dimensions, expected one of 1");
            return onMemory<T>(copied<T>(array), true);
        }
        return onMemory<T>(chunkOfNumbers<T>(array), true);
    });
}

template<class... T>
void addArrays()
{
    (addConversion<Array<T>, toPython<T>, fromPython<T>>(), ...);
}

} // namespace

py::object arrayOf(const AnyChunk& chunk)
{
    if (!chunk)
        return py::none();
    for (const py::dtype& type : {py::dtype::of<double>(), py::dtype::of<float>(), py::dtype::of<std::int64_t>(),
                                  py::dtype::of<int>(), py::dtype::of<short>()}) {
        const bool fits = withElement(type, [&](auto element) { return chunk->elementType() == typeid(element); });
        if (fits)
            return onMemory(chunk, type, chunk->size(), false);
    }
    return onMemory(chunk, py::dtype::of<std::uint8_t>(), chunk->size() * chunk->elementSize(), false);
}

AnyChunk chunkOf(const py::object& object)
{
    if (object.is_none())
        return {};
    const py::array array = py::array::ensure(object);
    if (!array)
        throw py::type_error("found " + printed(object) + ", expected an array");
    return withElement(array.dtype(), [&](auto element) { return AnyChunk{chunkOfNumbers<decltype(element)>(array)}; });
}

void bindArrays(py::module_& module)
{
    addArrays<double, float, short, int, long long>();
    module.def("array", newArray, py::arg("numbers"), py::arg("dtype") = py::none(),
               "Returns a new numpy array with a copy of `numbers`. An input to which it is assigned has its memory, "
               "without a copy; the array is read-only from then on.\n\n"
               ">>> fa.array([1.0, 2.0])\narray([1., 2.])\n");
    module.def("zeros", zeros, py::arg("size"), py::arg("dtype") = "float64",
               "Returns a new numpy array of zeros, as `array` does.\n\n>>> fa.zeros(2)\narray([0., 0.])\n");
    module.def(
        "_chunk_bytes", [] { return Loam::ChunkBase::TotalMemsize.load(); },
        "Returns the bytes of all chunks in the process.");
}

} // namespace Tarn::Python
