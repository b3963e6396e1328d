#include <trellis/VActionNotifier.hpp>

#include <trellis/VManagedObject.hpp>

#include <loam/StringUtil.hpp>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <vector>

namespace Orla {

namespace {

struct Notifiers {
    std::mutex mutex;
    std::vector<Loam::WeakPtrImpl<VActionNotifier>> list;
};

Notifiers& notifiers()
{
    static Notifiers& theNotifiers = *new Notifiers; // objects that outlive static objects may warn
    return theNotifiers;
}

// The text may come from a file, and standard error may be a terminal.
void print(const std::string& message)
{
    std::fprintf(stderr, "%s\n", Loam::StringUtil::onOneLine(message).c_str());
}

} // namespace

VActionNotifier::~VActionNotifier() = default;

bool VActionNotifier::warned(const std::string&)
{
    return false;
}

bool VActionNotifier::failed(const std::string& message)
{
    return warned(message);
}

void VActionNotifier::objectCreated(const StrongPtr<VManagedObject>&, const Loam::InterfaceContainer&,
                                    const StrongPtr<VObjectCreator>&)
{
}

void VActionNotifier::objectRemoved(const StrongPtr<VManagedObject>&)
{
}

bool VActionNotifier::add(const StrongPtr<VActionNotifier>& notifier)
{
    if (!notifier)
        return false;
    const std::lock_guard lock{notifiers().mutex};
    auto& list = notifiers().list;
    if (std::ranges::find(list, Loam::WeakPtrImpl<VActionNotifier>(notifier)) != list.end())
        return false;
    std::erase_if(list, [](const auto& each) { return each.expired(); });
    list.emplace_back(notifier);
    return true;
}

bool VActionNotifier::remove(const StrongPtr<VActionNotifier>& notifier)
{
    if (!notifier)
        return false;
    const std::lock_guard lock{notifiers().mutex};
    return std::erase(notifiers().list, notifier) > 0;
}

void VActionNotifier::forEachLiving(const std::function<void(VActionNotifier&)>& function)
{
    // Notifiers may add and remove each other; a removed one is no longer called.
    std::vector<Loam::WeakPtrImpl<VActionNotifier>> entries;
    {
        const std::lock_guard lock{notifiers().mutex};
        entries = notifiers().list;
    }
    for (const Loam::WeakPtrImpl<VActionNotifier>& entry : entries) {
        StrongPtr<VActionNotifier> notifier;
        {
            const std::lock_guard lock{notifiers().mutex};
            const auto& list = notifiers().list;
            if (std::ranges::find(list, entry) != list.end())
                notifier = entry.lock();
        }
        if (notifier)
            function(*notifier);
    }
}

void VActionNotifier::Warning(const std::string& message)
{
    bool shown = false;
    forEachLiving([&](VActionNotifier& notifier) { shown |= notifier.warned(message); });
    if (!shown)
        print(message);
}

void VActionNotifier::Error(const std::string& message)
{
    bool shown = false;
    forEachLiving([&](VActionNotifier& notifier) { shown |= notifier.failed(message); });
    if (!shown)
        print(message);
}

void VActionNotifier::VObjectCreation(const StrongPtr<VManagedObject>& object,
                                      const Loam::InterfaceContainer& interfaces,
                                      const StrongPtr<VObjectCreator>& creator)
{
    if (!object)
        return;
    VManagedObject::add(object);
    forEachLiving([&](VActionNotifier& notifier) { notifier.objectCreated(object, interfaces, creator); });
}

void VActionNotifier::VObjectRemoval(const StrongPtr<VManagedObject>& object)
{
    forEachLiving([&](VActionNotifier& notifier) { notifier.objectRemoved(object); });
}

} // namespace Orla
