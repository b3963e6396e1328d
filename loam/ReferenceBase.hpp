#pragma once

#include <loam/Export.hpp>
#include <loam/ReferenceBlock.hpp>

#include <cstddef>
#include <new>

namespace Loam {

/// Marks an object, created with `new (RootFirst{})`, whose counted root is its first base
/// and is constructed with this tag. The object locates its count block directly, without
/// a search.
struct RootFirst {
    explicit RootFirst() = default;
};

/// The common base of all reference-counted classes; derive from `ReferenceBase`,
/// not from this.
///
/// An object has exactly one counted root. A class that combines several mix-ins
/// derives virtually from its root.
class LOAM_API Counted {
public:
    /// Called once, after the last strong pointer is released and before the destructor.
    /// The object is still intact; weak pointers to it read as null.
    virtual void extremeUnction() = 0;

    ReferenceBlock& referenceBlock() const noexcept { return *m_block; }

    /// Allocates the object and, directly before it, its count block.
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
        : m_block{::new(reinterpret_cast<std::byte*>(this) - sizeof(ReferenceBlock))
                      ReferenceBlock{ReferenceBlock::Fresh, this}}
    {
    }
    // Copying does not copy the counts: they belong to the object, not to its value.
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
/// The first `StrongPtr` made from the plain pointer takes ownership of an object
/// created with `new`. Before that, especially in constructors, weak pointers to it
/// work and may be locked; do not make a `StrongPtr` from `this` there.
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
