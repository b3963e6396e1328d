// An object library whose static initialisation fails.

#include <stdexcept>

namespace {

struct Thrower {
    Thrower() { throw std::runtime_error{"no licence"}; }
};

const Thrower thrower;

} // namespace
