#pragma once

// All headers of fathom and of the libraries below it. Single headers compile faster; for code
// that only passes pointers, Forward.hpp suffices.

// First those that report the most common mistakes: an error of the compiler begins with the headers
// through which it came there.
#include <trellis/VDescription.hpp>

#include <trellis/VSlotContainer.hpp>

#include <trellis/VObjectCreator.hpp>

#include <fathom/VValue.hpp>

#include <fathom/VDescriptionOf.hpp>

#include <fathom/TypedSlot.hpp>

#include <fathom/VOutput.hpp>

#include <fathom/VValueType.hpp>

#include <fathom/Action.hpp>
#include <fathom/BoundingBall.hpp>
#include <fathom/BoundingBox.hpp>
#include <fathom/Char.hpp>
#include <fathom/Chunk.hpp>
#include <fathom/ColorTypes.hpp>
#include <fathom/CommandLineParser.hpp>
#include <fathom/Double.hpp>
#include <fathom/Frustum.hpp>
#include <fathom/GyreFixedArray.hpp>
#include <fathom/GyrePhysicalSpaceBiVector.hpp>
#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/HotKey.hpp>
#include <fathom/ImageTile.hpp>
#include <fathom/MultiRange.hpp>
#include <fathom/Position2D.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VComponent.hpp>
#include <fathom/VComponentValue.hpp>
#include <fathom/VComputedValue.hpp>
#include <fathom/VConnectionTypeColors.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VInputValueTrait.hpp>
#include <fathom/VInteractionEvent.hpp>
#include <fathom/VMemberValue.hpp>
#include <fathom/VMultiPointerDevice.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VNumbers.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VPolyOutput.hpp>
#include <fathom/VRunningCell.hpp>
#include <fathom/VScalarFunctor.hpp>
#include <fathom/VStringList.hpp>
#include <fathom/VTextOfMembers.hpp>
#include <fathom/VTime.hpp>
#include <fathom/VTimeSource.hpp>
#include <fathom/VUrlSystemHandler.hpp>
#include <fathom/VValueParameter.hpp>

#include <gable/gable.hpp>
#include <trellis/trellis.hpp>
