#pragma once

#include <loam/WeakPtr.hpp>

// Forward declarations, for code that only passes pointers.
namespace Loam {

class Ageable;
class ChunkBase;
class FileInfo;
class InterfaceBase;
class InterfaceContainer;
class LoadedLibrary;
class Scanner;
class StringList;
class TypeInfo;
template<class T>
class Chunk;
template<class T>
class TypedChunk;

} // namespace Loam
