// The order of virtual functions is part of the binary interface: client libraries are
// compiled against it and loaded years later. These tests read it from the vtables.

#include <fathom/CommandLineParser.hpp>
#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/VUrlSystemHandler.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace VirtualOrderTest {

extern "C" void __cxa_pure_virtual();

using namespace Orla;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsSubsetOf;

namespace {

using Operation = const void*;
using Table = const Operation*;

template<class Object>
Table tableOf(const Object& object)
{
    const void* const start = &object; // the vtable pointer is here
    Table table;
    std::memcpy(&table, start, sizeof table);
    return table;
}

// The index of a virtual function in the vtable of its class.
template<class Member>
std::size_t placeOf(Member operation)
{
    std::uintptr_t word;
    std::memcpy(&word, &operation, sizeof word);
    // Some platforms mark virtual functions with the low bit.
    return (word & ~std::uintptr_t{1}) / sizeof(Operation);
}

// Functions that write different numbers here stay distinct; an optimizer may merge
// functions that do the same.
volatile int mark = 0;

// Finds the vtable index of each virtual function of `Class`: an override changes the
// entry at that index.
template<class Class, class... Arguments>
class Order {
public:
    explicit Order(Arguments... arguments) : m_arguments{std::move(arguments)...}
    {
        struct Longer : Class {
            using Class::Class;
            virtual void appended() {}
        };
        m_names.resize(placeOf(&Longer::appended));

        struct Destroyed : Class {
            using Class::Class;
            ~Destroyed() override { mark = 1; }
        };
        find<Destroyed>("destructor");

        // The vtable of the class itself may come from another library. An inline function
        // without an exported address has one address per library.
        withBoth<Class>([this](Table own, Table unchanged) {
            for (std::size_t place = 0; place < m_names.size(); ++place) {
                if (own[place] != unchanged[place])
                    m_ownEntries.insert(place);
            }
        });
    }

    template<class Overriding>
    void find(const std::string& name)
    {
        static_assert(std::is_base_of_v<Class, Overriding>);
        withBoth<Overriding>([&](Table overriding, Table unchanged) {
            for (std::size_t place = 0; place < m_names.size(); ++place) {
                if (overriding[place] != unchanged[place] && m_names[place] != "destructor")
                    m_names[place] += name;
            }
        });
    }

    /// The functions in vtable order; an empty name where none was found.
    const std::vector<std::string>& names() const { return m_names; }

    /// The indices where the vtable of the class differs from that of a class derived here
    /// that overrides only the destructor.
    const std::set<std::size_t>& ownEntries() const { return m_ownEntries; }

private:
    struct Unchanged : Class {
        using Class::Class;
        ~Unchanged() override { mark = 2; }
    };

    template<class Other>
    void withBoth(auto function) const
    {
        std::apply(
            [&](const Arguments&... arguments) {
                const Other other(arguments...);
                const Unchanged unchanged(arguments...);
                function(tableOf(other), tableOf(unchanged));
            },
            m_arguments);
    }

    std::tuple<Arguments...> m_arguments;
    std::vector<std::string> m_names;
    std::set<std::size_t> m_ownEntries;
};

// Each overrides one virtual function.

using Value = VValue<double>;
using WeakValue = WeakPtrImpl<VValueBase>;
using WeakSource = WeakPtrImpl<VManagedObject, VManagedObjectBase>;

struct ValueUnction : Value {
    void extremeUnction() override { mark = 3; }
};
struct ValueGetType : Value {
    const std::type_info& getType() const override { return typeid(int); }
};
struct ValueCopy : Value {
    StrongPtr<VValueBase> copy() const override { return nullptr; }
};
struct ValueGetFrom : Value {
    bool getValueFrom(const WeakValue&) override { return false; }
};
struct ValueSetText : Value {
    bool setValueFromText(const std::string&) override { return false; }
};
struct ValueText : Value {
    std::string Text() const override { return ""; }
};
struct ValueIsDifferent : Value {
    bool isDifferentFrom(const WeakValue&) const override { return false; }
};
struct ValueSource : Value {
    WeakSource source() override { return nullptr; }
};
struct ValueSetSource : Value {
    void setSource(const WeakSource&) override {}
};
struct ValueInterface : Value {
    StrongPtr<InterfaceBase> getInterface() const override { return nullptr; }
};
struct ValueAge : Value {
    Ageable& age() override { return *this; }
    using Value::age;
};
struct ValueAgeConst : Value {
    const Ageable& age() const override { return *this; }
    using Value::age;
};
struct ValueCreatorOf : Value {
    StrongPtr<VValueCreator> getValueCreator() const override { return nullptr; }
};
struct ValueChunk : Value {
    StrongPtr<ChunkBase> getChunk(unsigned long long) const override { return nullptr; }
};
struct ValueContainer : Value {
    void setContainerValue(const WeakValue&) override {}
};
struct ValueGet : Value {
    bool getValue(double&) const override { return false; }
};
struct ValueSet : Value {
    bool setValue(const double&) override { return false; }
};
struct ValueChunkOf : Value {
    StrongPtr<ChunkBase> getChunkOfValue(unsigned long long) const override { return nullptr; }
};

constexpr std::size_t unctionAndDestructor[] = {0, 1, 2};

const char* const valueOperations[] = {"extremeUnction", "destructor",
                                       "destructor", // a destructor has two entries: with and without freeing memory
                                       "getType",        "copy",
                                       "getValueFrom",   "setValueFromText",
                                       "Text",           "isDifferentFrom",
                                       "source",         "setSource",
                                       "getInterface",   "age",
                                       "age const",      "getValueCreator",
                                       "getChunk",       "setContainerValue",
                                       "getValue",       "setValue",
                                       "getChunkOfValue"};

} // namespace

TEST(VirtualOrder, matchesTheDocumentedOrderOfValues)
{
    Order<Value> order;
    order.find<ValueUnction>("extremeUnction");
    order.find<ValueGetType>("getType");
    order.find<ValueCopy>("copy");
    order.find<ValueGetFrom>("getValueFrom");
    order.find<ValueSetText>("setValueFromText");
    order.find<ValueText>("Text");
    order.find<ValueIsDifferent>("isDifferentFrom");
    order.find<ValueSource>("source");
    order.find<ValueSetSource>("setSource");
    order.find<ValueInterface>("getInterface");
    order.find<ValueAge>("age");
    order.find<ValueAgeConst>("age const");
    order.find<ValueCreatorOf>("getValueCreator");
    order.find<ValueChunk>("getChunk");
    order.find<ValueContainer>("setContainerValue");
    order.find<ValueGet>("getValue");
    order.find<ValueSet>("setValue");
    order.find<ValueChunkOf>("getChunkOfValue");
    EXPECT_THAT(order.names(), ElementsAreArray(valueOperations));
    EXPECT_THAT(order.ownEntries(), IsSubsetOf(unctionAndDestructor));
}

TEST(VirtualOrder, isTheSameForTypedValueBasesWithPureEntries)
{
    // The class is abstract, but its vtable is exported.
    const std::string symbol = std::string("_ZTV") + typeid(VTypedValueBase<double>).name();
    const auto* const description = static_cast<const Operation*>(dlsym(RTLD_DEFAULT, symbol.c_str()));
    ASSERT_TRUE(description);
    ASSERT_EQ(description[1], &typeid(VTypedValueBase<double>));
    const Table table = description + 2;
    const Table values = tableOf(Value());

    const std::vector<std::string> names(std::begin(valueOperations), std::end(valueOperations));
    std::vector<std::string> pure;
    std::vector<std::string> inherited;
    for (std::size_t place = 0; place < names.size(); ++place) {
        if (table[place] == reinterpret_cast<const void*>(&__cxa_pure_virtual))
            pure.push_back(names[place]);
        else if (table[place] == values[place])
            inherited.push_back(names[place]);
    }
    EXPECT_THAT(pure, ElementsAre("copy", "getValueFrom", "setValueFromText", "Text", "source", "age", "age const",
                                  "getValueCreator", "getValue", "setValue", "getChunkOfValue"));
    EXPECT_THAT(inherited, testing::IsSupersetOf(
                               {"isDifferentFrom", "setSource", "getInterface", "getChunk", "setContainerValue"}));
}

TEST(VirtualOrder, matchesTheDocumentedOrderOfValueCreators)
{
    using Creator = TypedValueCreator<double>;
    struct Unction : Creator {
        void extremeUnction() override { mark = 3; }
    };
    struct Create : Creator {
        StrongPtr<VValueBase> create(const std::string&, bool&) override { return nullptr; }
    };
    Order<Creator> order;
    order.find<Unction>("extremeUnction");
    order.find<Create>("create");
    EXPECT_THAT(order.names(), ElementsAre("extremeUnction", "destructor", "destructor", "create"));
    EXPECT_THAT(order.ownEntries(), IsSubsetOf(unctionAndDestructor));
}

TEST(VirtualOrder, matchesTheDocumentedOrderOfParameters)
{
    using Parameter = VValueParameter<Range>;
    using Preferences = StrongPtr<VCreationPreferences, InterfaceBase>;
    struct Unction : Parameter {
        using Parameter::Parameter;
        void extremeUnction() override { mark = 3; }
    };
    struct Touch : Parameter {
        using Parameter::Parameter;
        void touch() const override {}
    };
    struct Default : Parameter {
        using Parameter::Parameter;
        StrongPtr<VValueBase> DefaultValue() const override { return nullptr; }
    };
    struct Copy : Parameter {
        using Parameter::Parameter;
        StrongPtr<VParameter, ValueNotifierList> copy() const override { return nullptr; }
    };
    struct Local : Parameter {
        using Parameter::Parameter;
        StrongPtr<VValueBase> createLocalVariable(const StrongPtr<ValuePool>&) const override { return {}; }
    };
    struct Global : Parameter {
        using Parameter::Parameter;
        bool setGlobalValue(const StrongPtr<VValueBase>&, const std::string&) const override { return false; }
    };
    struct New : Parameter {
        using Parameter::Parameter;
        StrongPtr<VValueBase> newValue() const override { return nullptr; }
    };
    Order<Parameter, Range, std::string, Preferences> order{Range{}, "limits", nullptr};
    order.find<Unction>("extremeUnction");
    order.find<Touch>("touch");
    order.find<Default>("DefaultValue");
    order.find<Copy>("copy");
    order.find<Local>("createLocalVariable");
    order.find<Global>("setGlobalValue");
    order.find<New>("newValue");
    EXPECT_THAT(order.names(), ElementsAre("extremeUnction", "destructor", "destructor", "touch", "DefaultValue",
                                           "copy", "createLocalVariable", "setGlobalValue", "newValue"));
    EXPECT_THAT(order.ownEntries(), IsSubsetOf(unctionAndDestructor));
}

TEST(VirtualOrder, matchesTheDocumentedOrderOfSlotCreators)
{
    using Creator = TypedSlot<Range>::SlotCreator;
    struct Unction : Creator {
        void extremeUnction() override { mark = 3; }
    };
    struct NewSlot : Creator {
        StrongPtr<VSlot> newSlot(VSlotContainer*, const std::string&, const std::string&, bool&,
                                 const StrongPtr<VCreationPreferences>&, int) const override
        {
            return nullptr;
        }
    };
    Order<Creator> order;
    order.find<Unction>("extremeUnction");
    order.find<NewSlot>("newSlot");
    EXPECT_THAT(order.names(), ElementsAre("extremeUnction", "destructor", "destructor", "newSlot"));
    EXPECT_THAT(order.ownEntries(), IsSubsetOf(unctionAndDestructor));
}

TEST(VirtualOrder, matchesTheDocumentedOrderOfCommandLineParsers)
{
    using Parser = CommandLineParser;
    struct Option : Parser {
        bool processOption(const std::string&) override { return false; }
    };
    struct Argument : Parser {
        bool processArgument(const std::string&) override { return !mark; }
    };
    Order<Parser> order;
    order.find<Option>("processOption");
    order.find<Argument>("processArgument");
    EXPECT_THAT(order.names(), ElementsAre("destructor", "destructor", "processOption", "processArgument"));
    EXPECT_THAT(order.ownEntries(), IsSubsetOf({std::size_t{0}, std::size_t{1}}));
}

TEST(VirtualOrder, matchesTheDocumentedOrderOfUrlHandlers)
{
    struct Handler : VUrlSystemHandler {
        bool openUrl(const std::string&) override { return true; }
    };
    struct Unction : Handler {
        void extremeUnction() override { mark = 3; }
    };
    struct Open : Handler {
        bool openUrl(const std::string&) override { return false; }
    };
    Order<Handler> order;
    order.find<Unction>("extremeUnction");
    order.find<Open>("openUrl");
    EXPECT_THAT(order.names(), ElementsAre("extremeUnction", "destructor", "destructor", "openUrl"));
    EXPECT_THAT(order.ownEntries(), IsSubsetOf(unctionAndDestructor));
}

} // namespace VirtualOrderTest
