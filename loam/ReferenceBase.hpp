#pragma once

#include <loam/Export.hpp>
#include <loam/ReferenceBlock.hpp>

#include <cstddef>
#include <new>

namespace Loam {

/// Marks an object, made with `new (RootFirst{})`, whose counted root is its first base and
/// is constructed with this tag. Such an object finds its count block at once, where others
/// look for it.
struct RootFirst {
    explicit RootFirst() = default;
};

/// What all reference-counted classes have in common; derive from
/// `ReferenceBase`, not from this.
///
/// Exactly one counted root belongs into an object. A class that joins several
/// mix-ins derives from its root virtually.
class LOAM_API Counted {
public:
    /// Called once, when the last strong pointer is gone and before the
    /// destructor. The object is still whole; weak pointers to it read as null.
    virtual void extremeUnction() = 0;

    ReferenceBlock& referenceBlock() const noexcept { return *m_block; }

    /// The count block stands before the object, in the same allocation.
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, std::align_val_t alignment);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void* operator new(std::size_t size, RootFirst);
    static void* operator new[](std::size_t size) = delete;
    static void operator delete(void* object) noexcept;
    static void operator delete(void* object, std::align_val_t alignment) noexcept;
    static void operator delete(void*, void*) noexcept {}
    static void operator delete(void* object, RootFirst) noexcept;

protected:
    Counted();
    explicit Counted(RootFirst) noexcept
        : m_block{::new (reinterpret_cast<std::byte*>(this) - sizeof(ReferenceBlock))
                      ReferenceBlock{ReferenceBlock::Fresh, this}}
    {
    }
    // The counts belong to the object, not to its value.
    Counted(const Counted&) : Counted() {}
    Counted& operator=(const Counted&) noexcept { return *this; }
    virtual ~Counted();

private:
    friend class ReferenceBlock;

    ReferenceBlock* m_block;
};

/// Root of a family of reference-counted classes: `class VValueBase : public
/// ReferenceBase<VValueBase>`.
///
/// An object made with `new` belongs to the first `StrongPtr` that is made from
/// the plain pointer. Until then, in constructors above all, weak pointers to
/// it work and may be promoted; a `StrongPtr` is not made from `this` there.
template<class Base>
class ReferenceBase : public Counted {
public:
    void extremeUnction() override {}
    ~ReferenceBase() override = default;

protected:
    ReferenceBase() = default;
    explicit ReferenceBase(RootFirst tag) noexcept : Counted{tag} {}
    ReferenceBase(const ReferenceBase&) = default;
    ReferenceBase& operator=(const ReferenceBase&) = default;
};

} // namespace Loam
