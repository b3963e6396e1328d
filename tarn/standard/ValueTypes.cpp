#include <fathom/Double.hpp>
#include <fathom/ImageTile.hpp>
#include <fathom/VValueType.hpp>

// Types that have a text form but are no values or inputs by themselves: each
// becomes both, so that every network can use it.

namespace {

const Orla::VValueType<short> shortType;
const Orla::VValueType<int> intType;
const Orla::VValueType<long> longType;
const Orla::VValueType<long long> longLongType;
const Orla::VValueType<unsigned short> unsignedShortType;
const Orla::VValueType<unsigned int> unsignedIntType;
const Orla::VValueType<unsigned long> unsignedLongType;
const Orla::VValueType<unsigned long long> unsignedLongLongType;
const Orla::VValueType<float> floatType;
const Orla::VValueType<double> doubleType;
const Orla::VValueType<Orla::ImageTile> imageTileType;

} // namespace
