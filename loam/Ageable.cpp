#include <loam/Ageable.hpp>

namespace Loam {

std::atomic<Ageable::Age> Ageable::GlobalTime{0};

} // namespace Loam
