#pragma once

#include <trellis/VActionNotifier.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What the fuzz targets share. Each target defines `LLVMFuzzerTestOneInput`, which the fuzzer
// calls with one input after another in the same process.

namespace Fuzz {

/// Returns the bytes of an input as text.
inline std::string_view textOf(const std::uint8_t* data, std::size_t size) noexcept
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process with \p promise if it is not \p kept; the fuzzer then saves the input.
void require(bool kept, std::string_view promise);

/// Ends the process unless both texts are equal; prints both.
void requireEqual(std::string_view found, std::string_view expected, std::string_view promise);

/// Writes a file into a temporary folder, which is removed at the end, and returns its path.
std::string fileWith(const std::string& name, std::string_view content);

/// Receives warnings in place of standard error.
class SilentWarnings final : public Orla::VActionNotifier {
public:
    bool warned(const std::string&) override { return true; }
};

/// Loads the standard library and the test objects, which stay loaded, and silences warnings.
/// Does nothing when it is called again.
void prepareHost();

} // namespace Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
