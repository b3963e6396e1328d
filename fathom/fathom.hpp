#pragma once

#include <trellis/trellis.hpp>

// Forward declarations, for code that only passes pointers.
namespace Orla {

class Frustum;
class ImageTile;
class Interactive;
class Range;
class TimeDependent;
class VCamera;
class VConnectionTypeColors;
class VInteractionEvent;
class VTime;
template<class T>
class TypedSlot;
template<class T>
class TypedValueCreator;
template<class T>
class VOutput;
template<class T>
class VTypedValueBase;
template<class T>
class VValue;
template<class T>
class VValueParameter;
template<class T>
struct VInputValueTrait;
template<class T>
struct VOutputAssignmentContext;

} // namespace Orla
