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

/// Base of every value that flows between processing objects: it knows its
/// type, its age, and how to turn itself into text and back.
///
/// The order of the virtual operations is part of the binary interface.
class TRELLIS_API VValueBase : public Loam::ReferenceBase<VValueBase> {
public:
    ~VValueBase() override;

    virtual const std::type_info& getType() const = 0;

    /// An independent value with the same content and the current global age.
    virtual StrongPtr<VValueBase> copy() const = 0;

    /// Takes the content of \p other. False, and nothing changed, if \p other is
    /// gone or of another type: types are never converted, not through text either.
    virtual bool getValueFrom(const WeakPtrImpl<VValueBase>& other) = 0;

    /// Parses \p text into the value; false if the text is refused.
    virtual bool setValueFromText(const std::string& text) = 0;

    virtual std::string Text() const = 0;

    /// True also if \p other is gone or of another type.
    virtual bool isDifferentFrom(const WeakPtrImpl<VValueBase>& other) const = 0;

    /// The object that produces the value, null for a plain value.
    virtual WeakPtrImpl<VManagedObject, VManagedObjectBase> source() = 0;

    /// Tells the value who produces it; a plain value does not keep it.
    virtual void setSource(const WeakPtrImpl<VManagedObject, VManagedObjectBase>& source);

    /// An optional ability of the value, null unless a class has one.
    virtual StrongPtr<InterfaceBase> getInterface() const;

    virtual Ageable& age() = 0;
    virtual const Ageable& age() const = 0;

    /// The creator that makes values of this type; null while its library unloads.
    virtual StrongPtr<VValueCreator> getValueCreator() const = 0;

    /// An array of \p count copies of the value.
    /// \throw std::bad_alloc or a class derived from it.
    virtual StrongPtr<ChunkBase> getChunk(unsigned long long count) const = 0;

    /// Tells a component of which value it is a part; other values ignore it.
    virtual void setContainerValue(const WeakPtrImpl<VValueBase>& container);

    /// The part of the value named \p member, as a value that reads from and
    /// writes to this one; the value itself for the empty name, null for a name
    /// that its type does not have.
    StrongPtr<VValueBase> component(const std::string& member);

protected:
    VValueBase() = default;
    explicit VValueBase(Loam::RootFirst tag) noexcept : ReferenceBase{tag} {}
    VValueBase(const VValueBase&) = default;
    VValueBase& operator=(const VValueBase&) = default;
};

} // namespace Orla
