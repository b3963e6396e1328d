#pragma once

/// Replaces operator new and operator delete of the program that compiles ReplacedNew.cpp. The
/// program defines these functions.
namespace ReplacedNew {

/// Called before each allocation. It may throw std::bad_alloc, and must not allocate.
void allocating();

/// Called after each successful allocation.
void allocated() noexcept;

/// Called for each block that is released.
void released() noexcept;

} // namespace ReplacedNew
