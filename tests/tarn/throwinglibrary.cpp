// An object library whose static initialisation fails.

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace {

struct Thrower {
    Thrower()
    {
        if (std::getenv("TEST_NO_MEMORY"))
            throw std::bad_alloc{};
        throw std::runtime_error{"no\x1B[1m licence"};
    }
};

const Thrower thrower;

} // namespace
