#pragma once

#include <loam/Forward.hpp>

// Forward declarations, for code that only passes pointers.
namespace Orla {

class TypedSlotCreator;
class VActionNotifier;
class VConnectable;
class VCreationPreferences;
class VExecutor;
class VFrame;
class VLibrary;
class VManagedObject;
class VManagedObjectBase;
class VNetwork;
class VObject;
class VObjectCreator;
class VObserver;
class VParameter;
class VRequest;
class VScheduler;
class VSkale;
class VSlot;
class VSlotContainer;
class VSlotDescription;
class VSlotSet;
class VTypeDescription;
class VValueBase;
class VValueCreator;
class ValueNotifierList;
class ValuePool;
template<class T>
struct VValueTrait;

} // namespace Orla
