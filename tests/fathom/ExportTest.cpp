#include <fathom/Export.hpp>

#include <fathom/Action.hpp>
#include <fathom/Char.hpp>
#include <fathom/CommandLineParser.hpp>
#include <fathom/Double.hpp>
#include <fathom/HotKey.hpp>
#include <fathom/ImageTile.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VInteractionEvent.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VScalarFunctor.hpp>
#include <fathom/VStringList.hpp>
#include <fathom/VTime.hpp>
#include <fathom/VUrlSystemHandler.hpp>

#include <loam/Environment.hpp>

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>
#include <vector>

#include <dlfcn.h>

namespace ExportTest {

using namespace Orla;

namespace {

// The path of fathom's file, found through a function that only fathom compiles.
std::string library()
{
    std::string (*function)(const ImageTile&) = &VValueTrait<ImageTile>::Text;
    return Loam::getLibraryPath(reinterpret_cast<const void*>(function));
}

// The symbols that every client must share so that a class is the same everywhere.
template<class... Classes>
std::vector<std::string> symbolsOf()
{
    std::vector<std::string> symbols;
    for (const std::type_info* type : {&typeid(Classes)...}) {
        for (const char* kind : {"_ZTV", "_ZTI", "_ZTS"}) // vtable, type info, type name
            symbols.push_back(kind + std::string(type->name()));
    }
    return symbols;
}

template<class T>
std::vector<std::string> valueSymbols()
{
    return symbolsOf<VTypedValueBase<T>, VValue<T>, TypedValueCreator<T>>();
}

template<class T>
std::vector<std::string> inputSymbols()
{
    return symbolsOf<VValueParameter<T>, typename TypedSlot<T>::SlotCreator>();
}

} // namespace

TEST(Export, providesEveryPromisedInstantiation)
{
    const std::string path = library();
    ASSERT_NE(path.find("libfathom"), std::string::npos);
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_TRUE(handle);
    for (const std::vector<std::string>& symbols :
         {valueSymbols<double>(),
          valueSymbols<char>(),
          valueSymbols<std::string>(),
          valueSymbols<Range>(),
          valueSymbols<VTime>(),
          valueSymbols<VInteractionEvent>(),
          valueSymbols<VObjectStatus>(),
          symbolsOf<VValueParameter<VObjectStatus>, StatusIndicator, CatchStatus>(),
          symbolsOf<CommandLineParser, HotKey, VAction, VScalarFunctor::Functor, VUrlSystemHandler>(),
          valueSymbols<FlagList>(),
          inputSymbols<FlagList>(),
          valueSymbols<StrongPtr<StringSelection, StringList>>(),
          inputSymbols<StrongPtr<StringSelection, StringList>>(),
          symbolsOf<VEnumSelection, StringSelection, MultipleStringSelection>(),
          inputSymbols<char>(),
          inputSymbols<std::string>(),
          inputSymbols<Range>(),
          inputSymbols<VTime>(),
          inputSymbols<VInteractionEvent>(),
          symbolsOf<Range, TimeDependent, Interactive>()}) {
        for (const std::string& symbol : symbols) {
            const void* address = dlsym(handle, symbol.c_str());
            EXPECT_TRUE(address && Loam::getLibraryPath(address) == path) << symbol;
        }
    }
    dlclose(handle);
}

} // namespace ExportTest
