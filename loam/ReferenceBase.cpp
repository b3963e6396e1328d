#include <loam/ReferenceBase.hpp>

namespace Loam {

namespace {

// A constructor cannot determine how its object was allocated. `operator new` leaves
// a note in the memory of the future count block, and the constructor of the counted
// root checks whether it lies inside a noted object. Notes form a stack, because the
// arguments of a constructor may create other objects between allocation and
// construction.
struct PendingObject {
    PendingObject* next;
    std::size_t size;

    bool contains(const void* place) const noexcept;
};

// The note for an object with a separate block.
struct PendingApart : PendingObject {
    void* object;
};

constexpr std::size_t BlockSize = sizeof(ReferenceBlock);
constexpr std::size_t ApartBit = ~(~std::size_t{0} >> 1);

static_assert(sizeof(PendingObject) <= BlockSize);
static_assert(alignof(PendingObject) <= alignof(ReferenceBlock));
static_assert(BlockSize % __STDCPP_DEFAULT_NEW_ALIGNMENT__ == 0, "the object after the block must stay aligned");

bool PendingObject::contains(const void* place) const noexcept
{
    const void* begin = (size & ApartBit) != 0 ? static_cast<const PendingApart*>(this)->object
                                               : reinterpret_cast<const std::byte*>(this) + BlockSize;
    const auto distance = reinterpret_cast<std::uintptr_t>(place) - reinterpret_cast<std::uintptr_t>(begin);
    return distance < (size & ~ApartBit);
}

// No destructor: a thread that ends, or a library that is unloaded, needs no cleanup
// here.
#if defined(__GNUC__) && !defined(_WIN32)
__attribute__((tls_model("initial-exec")))
#endif
thread_local PendingObject* t_pending = nullptr;

PendingObject* takePending(const void* place) noexcept
{
    for (PendingObject** link = &t_pending; *link != nullptr; link = &(*link)->next) {
        if ((*link)->contains(place)) {
            PendingObject* found = *link;
            *link = found->next;
            return found;
        }
    }
    return nullptr;
}

} // namespace

Counted::Counted()
{
    if (PendingObject* pending = takePending(this)) {
        const std::uint32_t apart = (pending->size & ApartBit) != 0 ? ReferenceBlock::Apart : 0;
        m_block = ::new (static_cast<void*>(pending)) ReferenceBlock{ReferenceBlock::Fresh | apart, this};
    } else {
        m_block =
            ::new (::operator new(BlockSize)) ReferenceBlock{ReferenceBlock::Unowned | ReferenceBlock::Apart, this};
    }
}

Counted::~Counted()
{
    std::uint32_t old = m_block->m_strong.load(std::memory_order_acquire);
    if (old == ReferenceBlock::Dying)
        return; // the usual case: no pointer can lock the object, and operator delete is next
    // Remaining strong pointers keep the block until the last of them is released. Another
    // thread may do that as soon as it sees the flag, so their share is added first.
    m_block->addWeak();
    old = m_block->m_strong.fetch_or(ReferenceBlock::Destroyed, std::memory_order_acq_rel);
    if ((old & ReferenceBlock::CountMask) == 0)
        m_block->releaseWeak();
    if ((old & ReferenceBlock::Apart) != 0)
        m_block->releaseWeak();
}

void* Counted::operator new(std::size_t size)
{
    void* memory = ::operator new(BlockSize + size);
    t_pending = ::new (memory) PendingObject{t_pending, size};
    return static_cast<std::byte*>(memory) + BlockSize;
}

void Counted::operator delete(void* object) noexcept
{
    if (object == nullptr)
        return;
    void* memory = static_cast<std::byte*>(object) - BlockSize;
    // Still noted: an exception was thrown before the root was constructed.
    if (t_pending != nullptr && takePending(object) != nullptr)
        ::operator delete(memory);
    else
        static_cast<ReferenceBlock*>(memory)->releaseWeak();
}

void* Counted::operator new(std::size_t size, RootFirst)
{
    return static_cast<std::byte*>(::operator new(BlockSize + size)) + BlockSize;
}

// Called if the constructor threw after creating the block.
void Counted::operator delete(void* object, RootFirst) noexcept
{
    reinterpret_cast<ReferenceBlock*>(static_cast<std::byte*>(object) - BlockSize)->releaseWeak();
}

void* Counted::operator new(std::size_t size, std::align_val_t alignment)
{
    void* memory = ::operator new(sizeof(PendingApart));
    void* object = nullptr;
    try {
        object = ::operator new(size, alignment);
    } catch (...) {
        ::operator delete(memory);
        throw;
    }
    t_pending = ::new (memory) PendingApart{{t_pending, size | ApartBit}, object};
    return object;
}

void Counted::operator delete(void* object, std::align_val_t alignment) noexcept
{
    if (t_pending != nullptr) {
        if (PendingObject* pending = takePending(object))
            ::operator delete(static_cast<void*>(pending));
    }
    ::operator delete(object, alignment);
}

} // namespace Loam
