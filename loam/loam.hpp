#pragma once

// All headers of loam. Single headers compile faster; for code
// that only passes pointers, Forward.hpp suffices.

#include <loam/Ageable.hpp>
#include <loam/Ascii.hpp>
#include <loam/AtomicCount.hpp>
#include <loam/Chunk.hpp>
#include <loam/Environment.hpp>
#include <loam/FileError.hpp>
#include <loam/FileInfo.hpp>
#include <loam/Interface.hpp>
#include <loam/InterfaceVersion.hpp>
#include <loam/LoadedLibrary.hpp>
#include <loam/Numbers.hpp>
#include <loam/OutputFile.hpp>
#include <loam/ReferenceBase.hpp>
#include <loam/ReferenceBlock.hpp>
#include <loam/Result.hpp>
#include <loam/Scanner.hpp>
#include <loam/ScopeExit.hpp>
#include <loam/SpeakPtr.hpp>
#include <loam/StringList.hpp>
#include <loam/StringUtil.hpp>
#include <loam/StrongPtr.hpp>
#include <loam/TypeInfo.hpp>
#include <loam/Typename.hpp>
#include <loam/Utf8.hpp>
#include <loam/WeakPtr.hpp>
