#include <loam/SpeakPtr.hpp>

#include <loam/Typename.hpp>

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

void SpeakPtr::printRS(const char* where, const void* object, const ReferenceBlock& block,
                       const std::type_info& expected, const std::type_info& found)
{
    std::printf("%s: object %p, %u strong, %u weak, inconsistent: the object is a %s, not a %s\n", where, object,
                unsigned{block.strongCount()}, unsigned{block.weakCount()}, Typename(found).c_str(),
                Typename(expected).c_str());
}

} // namespace Loam
