#pragma once

// All headers of trellis and of the libraries below it. Single headers compile faster; for code
// that only passes pointers, Forward.hpp suffices.

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VConnectable.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/VDescription.hpp>
#include <trellis/VExecutor.hpp>
#include <trellis/VFileObserver.hpp>
#include <trellis/VFrame.hpp>
#include <trellis/VHistory.hpp>
#include <trellis/VLibrary.hpp>
#include <trellis/VManagedObject.hpp>
#include <trellis/VManagedObjectBase.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VObserver.hpp>
#include <trellis/VParameter.hpp>
#include <trellis/VPolyConnection.hpp>
#include <trellis/VRequest.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VSkale.hpp>
#include <trellis/VSlot.hpp>
#include <trellis/VSlotContainer.hpp>
#include <trellis/VSlotDescription.hpp>
#include <trellis/VSlotGlobals.hpp>
#include <trellis/VSlotPlace.hpp>
#include <trellis/VTypeDescription.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueBase.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/VValueCreator.hpp>
#include <trellis/VValueTrait.hpp>
#include <trellis/ValueNotifierList.hpp>
#include <trellis/ValuePool.hpp>
#include <trellis/Vprintf.hpp>

#include <loam/loam.hpp>
