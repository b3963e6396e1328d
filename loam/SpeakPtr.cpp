#include <loam/SpeakPtr.hpp>

#include <cstdio>

namespace Loam {

void SpeakPtr::printRS(const char* where, const void* object, const ReferenceBlock* block)
{
    if (block == nullptr)
        std::printf("%s: object %p, empty reference\n", where, object);
    else
        std::printf("%s: object %p, %u strong, %u weak, %s\n", where, object, unsigned{block->strongCount()},
                    unsigned{block->weakCount()}, block->isAlive() ? "alive" : "inconsistent: the object is not alive");
}

} // namespace Loam
