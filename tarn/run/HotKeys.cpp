#include <tarn/run/HotKeys.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/HotKey.hpp>

#include <map>
#include <utility>

namespace Tarn {

namespace {

using Orla::StrongPtr;

// Returns the key of an object in a new pool.
char initialKey(const Orla::HotKey& object)
{
    char key = 0;
    const auto parameter = object.hotKeySlot().parameter();
    const StrongPtr<Orla::VValueBase> value = parameter ? parameter->DefaultValue() : nullptr;
    if (const auto* typed = Orla::VTypedValueBase<char>::cast(value.get()))
        typed->getValue(key);
    return key;
}

} // namespace

std::vector<SharedHotKey> sharedHotKeys()
{
    std::map<char, std::vector<std::string>, Orla::HotKey::SignedLess> listeners;
    Orla::VManagedObject::forEachObject([&](const StrongPtr<Orla::VManagedObject>& object) {
        const StrongPtr<Orla::HotKey> listener{object};
        if (const char key = listener ? initialKey(*listener) : '\0')
            listeners[key].push_back(object->Name());
    });

    std::vector<SharedHotKey> shared;
    for (auto& [key, objects] : listeners) {
        if (objects.size() > 1)
            shared.push_back({key, std::move(objects)});
    }
    return shared;
}

std::string nameOfKey(char key)
{
    return key == ' ' ? "space" : inQuotes(std::string(1, key));
}

} // namespace Tarn
