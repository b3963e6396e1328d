// Part of every object library: a note in the file, with the binary interface that the library
// was built for. A host reads it before it loads the library.

#include <loam/InterfaceVersion.hpp>

#include <cstdint>

namespace {

// The layout of a note in an ELF file.
struct ObjectLibraryStamp {
    std::uint32_t nameSize = sizeof "fathom"; // without the padding
    std::uint32_t contentSize = sizeof interfaceVersion;
    std::uint32_t type = 1;
    char name[8] = "fathom";
    std::uint32_t interfaceVersion = Loam::InterfaceVersion;
};

[[gnu::section(".note.fathom"), gnu::used]] alignas(4) const ObjectLibraryStamp theObjectLibraryStamp{};

} // namespace
