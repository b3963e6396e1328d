#pragma once

namespace Loam {

/// The number of the binary interface of these libraries, which is also in their SONAMEs:
/// libfathom.so.0. It rises with the first release that programs linked with the one before
/// cannot use. The build reads it from this line.
inline constexpr unsigned InterfaceVersion = 0;

} // namespace Loam
