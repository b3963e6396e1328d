#pragma once

#include <trellis/Export.hpp>

#include <loam/Ageable.hpp>
#include <loam/Chunk.hpp>
#include <loam/Interface.hpp>
#include <loam/StrongPtr.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

using Loam::Ageable;
using Loam::ChunkBase;
using Loam::InterfaceBase;
using Loam::StrongPtr;
using Loam::WeakPtrImpl;

class VManagedObject;
class VManagedObjectBase;
class VValueCreator;

/// Base of all values passed between processing objects. A value knows its type and its age,
/// and converts to and from text.
///
/// The order of the virtual functions is part of the binary interface.
///
/// `docs/architecture.md` shows the path of a value through the classes.
class TRELLIS_API VValueBase : public Loam::ReferenceBase<VValueBase> {
public:
    ~VValueBase() override;

    virtual const std::type_info& getType() const = 0;

    /// Returns an independent value with the same content and the current global age.
    virtual StrongPtr<VValueBase> copy() const = 0;

    /// Copies the content of \p other. Returns false and changes nothing if \p other has
    /// expired or has another type. Types are never converted, not even through text.
    virtual bool getValueFrom(const WeakPtrImpl<VValueBase>& other) = 0;

    /// Parses \p text into the value. Returns false if the text is refused.
    virtual bool setValueFromText(const std::string& text) = 0;

    virtual std::string Text() const = 0;

    /// Returns true if the contents differ, or if \p other has expired or has another type.
    virtual bool isDifferentFrom(const WeakPtrImpl<VValueBase>& other) const = 0;

    /// Returns the object that produces the value; null for a plain value.
    virtual WeakPtrImpl<VManagedObject, VManagedObjectBase> source() = 0;

    /// Sets the object that produces the value; a plain value ignores it.
    virtual void setSource(const WeakPtrImpl<VManagedObject, VManagedObjectBase>& source);

    /// Returns an optional interface of the value; null unless a class provides one.
    virtual StrongPtr<InterfaceBase> getInterface() const;

    virtual Ageable& age() = 0;
    virtual const Ageable& age() const = 0;

    /// Returns the creator of values of this type; null while its library is being unloaded.
    virtual StrongPtr<VValueCreator> getValueCreator() const = 0;

    /// Returns an array of \p count copies of the value.
    /// \throw std::bad_alloc or a class derived from it.
    virtual StrongPtr<ChunkBase> getChunk(unsigned long long count) const = 0;

    /// Sets the value that a component belongs to; other values ignore it.
    virtual void setContainerValue(const WeakPtrImpl<VValueBase>& container);

    /// Returns the component \p member as a value that reads from and writes to this one.
    /// Returns the value itself for an empty name, and null for a name that the type does not
    /// have.
    StrongPtr<VValueBase> component(const std::string& member);

protected:
    VValueBase() = default;
    explicit VValueBase(Loam::RootFirst tag) noexcept : ReferenceBase{tag} {}
    VValueBase(const VValueBase&) = default;
    VValueBase& operator=(const VValueBase&) = default;
};

} // namespace Orla
