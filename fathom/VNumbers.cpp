#include <fathom/VNumbers.hpp>

// Declare the instantiations of VValue, which the library exports.
#include <fathom/Chunk.hpp>
#include <fathom/Double.hpp>
#include <fathom/GyreFixedArray.hpp>
#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/Position2D.hpp>

#include <gable/PhysicalSpace.hpp>

#include <loam/Chunk.hpp>

#include <trellis/VValueComponents.hpp>

namespace Orla {

namespace {

template<Loam::Number T>
void append(std::vector<double>& numbers, T number)
{
    numbers.push_back(static_cast<double>(number));
}

template<class T>
void append(std::vector<double>& numbers, const StrongPtr<Loam::TypedChunk<T>, Loam::ChunkBase>& array)
{
    if (array)
        numbers.insert(numbers.end(), array->begin(), array->end());
}

template<class Elements>
    requires requires(const Elements& elements) { elements.data() + elements.size(); }
void append(std::vector<double>& numbers, const Elements& elements)
{
    numbers.insert(numbers.end(), elements.data(), elements.data() + elements.size());
}

template<class T>
bool appendIf(std::vector<double>& numbers, VValueBase& value)
{
    const auto* const typed = VTypedValueBase<T>::cast(&value);
    T content{};
    if (!typed || !typed->getValue(content))
        return false;
    append(numbers, content);
    return true;
}

template<class T>
using Array = StrongPtr<Loam::TypedChunk<T>, Loam::ChunkBase>;

template<class... T>
bool appendIfAny(std::vector<double>& numbers, VValueBase& value)
{
    return (appendIf<T>(numbers, value) || ...);
}

} // namespace

std::vector<double> numbersOf(VValueBase& value)
{
    std::vector<double> numbers;
    if (appendIfAny<double, float, short, unsigned short, int, unsigned int, long, unsigned long, long long,
                    unsigned long long>(numbers, value)
        || appendIfAny<Array<double>, Array<float>, Array<short>, Array<int>, Array<long long>>(numbers, value)
        || appendIfAny<Gyre::FixedArray<int, 3>, Gyre::FixedArray<double, 2>, Gyre::PhysicalSpace::point>(numbers,
                                                                                                          value))
        return numbers;
    for (const std::string& name : VValueComponents::names(value.getType())) {
        if (const StrongPtr<VValueBase> part = value.component(name)) {
            const std::vector<double> found = numbersOf(*part);
            numbers.insert(numbers.end(), found.begin(), found.end());
        }
    }
    return numbers;
}

} // namespace Orla
