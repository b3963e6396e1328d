#include <fathom/Action.hpp>
#include <fathom/BoundingBall.hpp>
#include <fathom/BoundingBox.hpp>
#include <fathom/Chunk.hpp>
#include <fathom/ColorTypes.hpp>
#include <fathom/Double.hpp>
#include <fathom/GyreFixedArray.hpp>
#include <fathom/GyrePhysicalSpaceBiVector.hpp>
#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/ImageTile.hpp>
#include <fathom/MultiRange.hpp>
#include <fathom/Position2D.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VMultiPointerDevice.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VScalarFunctor.hpp>
#include <fathom/VValueType.hpp>

// Registers types that have a text form, but are not registered elsewhere, as values and as
// inputs for every network. Types from fathom have their labels there.

namespace {

const Orla::VValueType<bool> boolType{"bool"};
const Orla::VValueType<short> shortType{"16-bit integer"};
const Orla::VValueType<int> intType{"integer"};
const Orla::VValueType<long> longType{"long integer"};
const Orla::VValueType<long long> longLongType{"64-bit integer"};
const Orla::VValueType<unsigned short> unsignedShortType{"unsigned 16-bit integer"};
const Orla::VValueType<unsigned int> unsignedIntType{"unsigned integer"};
const Orla::VValueType<unsigned long> unsignedLongType{"unsigned long integer"};
const Orla::VValueType<unsigned long long> unsignedLongLongType{"unsigned 64-bit integer"};
const Orla::VValueType<float> floatType{"single-precision number"};
const Orla::VValueType<double> doubleType;
const Orla::VValueType<Orla::ImageTile> imageTileType;
const Orla::VValueType<Orla::VCamera> cameraType;
const Orla::VValueType<Orla::VMultiPointerDevice> multiPointerDeviceType;
const Orla::VValueType<Orla::VObjectStatus> statusType;
const Orla::VValueType<Orla::VScalarFunctor> scalarFunctorType;
const Orla::VValueType<Loam::StrongPtr<Orla::VAction>> actionType;
const Orla::VValueType<Orla::Enum> enumType;
const Orla::VValueType<Loam::StrongPtr<Orla::MultipleStringSelection, Loam::StringList>> multipleSelectionType;

const Orla::VValueType<Gyre::FixedArray<int, 3>> integerTripleType;
const Orla::VValueType<Gyre::FixedArray<double, 2>> pairType;
const Orla::VValueType<Gyre::PhysicalSpace::point> pointType;
const Orla::VValueType<Gyre::PhysicalSpace::bivector> bivectorType;
const Orla::VValueType<Gyre::rgba_float_t> colourType;
const Orla::VValueType<Gyre::BoundingBall> ballType;
const Orla::VValueType<Loam::StrongPtr<Gyre::BoundingBox, Loam::InterfaceBase>> boxType;
const Orla::VValueType<Gyre::MultiRange> multiRangeType;

template<class T>
using Array = Loam::StrongPtr<Loam::TypedChunk<T>, Loam::ChunkBase>;

const Orla::VValueType<Array<double>> doubleArrayType;
const Orla::VValueType<Array<float>> floatArrayType;
const Orla::VValueType<Array<short>> shortArrayType;
const Orla::VValueType<Array<int>> intArrayType;
const Orla::VValueType<Array<long long>> longArrayType;

} // namespace
