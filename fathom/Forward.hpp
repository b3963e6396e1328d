#pragma once

#include <gable/Forward.hpp>

#include <trellis/Forward.hpp>

// Forward declarations, for code that only passes pointers.
namespace Orla {

class Atlas;
class CatchStatus;
class CommandLineParser;
class Enum;
class FlagList;
class Frustum;
class HotKey;
class ImageTile;
class Interactive;
class MultipleStringSelection;
class Range;
class StatusIndicator;
class StringSelection;
class TimeDependent;
class VAction;
class VCamera;
class VChart;
class VChartDependent;
class VChartList;
class VChartSelector;
class VConnectionTypeColors;
class VEnumSelection;
class VInteractionEvent;
class VMultiPointerDevice;
class VObjectStatus;
class VScalarFunctor;
class VTime;
class VTimeSource;
class VUrlSystemHandler;
template<class T>
class TypedSlot;
template<class T>
class TypedValueCreator;
template<class T>
class VOutput;
template<class T, class Requester>
class VPolyOutput;
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
template<class T>
struct VOutputReference;

} // namespace Orla
