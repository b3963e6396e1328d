#include <trellis/VActionNotifier.hpp>

#include <trellis/VManagedObject.hpp>
#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace Orla {

namespace {

// Objects that go at the end of the program may still warn; then nobody is left
// who hears it.
struct Notifiers {
    ~Notifiers() { isGone = true; }

    std::vector<Loam::WeakPtrImpl<VActionNotifier>> list;
    static inline constinit bool isGone = false;
};

std::vector<Loam::WeakPtrImpl<VActionNotifier>>& notifiers()
{
    static Notifiers theNotifiers;
    return theNotifiers.list;
}

// Calls each notifier that is there at the start and still there when its turn
// comes; they may add and remove each other.
template<class Function>
void forEachNotifier(Function&& function)
{
    if (Notifiers::isGone)
        return;
    std::erase_if(notifiers(), [](const auto& notifier) { return notifier.expired(); });
    for (const Loam::WeakPtrImpl<VActionNotifier>& entry : std::vector(notifiers())) {
        if (std::ranges::find(notifiers(), entry) == notifiers().end())
            continue;
        if (const StrongPtr<VActionNotifier> notifier = entry.lock())
            function(*notifier);
    }
}

} // namespace

VActionNotifier::~VActionNotifier() = default;

bool VActionNotifier::warned(const std::string&)
{
    return false;
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
    if (!notifier || Notifiers::isGone
        || std::ranges::find(notifiers(), Loam::WeakPtrImpl<VActionNotifier>(notifier)) != notifiers().end())
        return false;
    notifiers().emplace_back(notifier);
    return true;
}

bool VActionNotifier::remove(const StrongPtr<VActionNotifier>& notifier)
{
    return notifier && !Notifiers::isGone
        && std::erase(notifiers(), Loam::WeakPtrImpl<VActionNotifier>(notifier)) > 0;
}

void VActionNotifier::Warning(const std::string& message)
{
    bool shown = false;
    forEachNotifier([&](VActionNotifier& notifier) { shown |= notifier.warned(message); });
    if (!shown)
        std::fprintf(stderr, "%s\n", message.c_str());
}

void VActionNotifier::VObjectCreation(const StrongPtr<VManagedObject>& object,
                                      const Loam::InterfaceContainer& interfaces,
                                      const StrongPtr<VObjectCreator>& creator)
{
    if (!object)
        return;
    VManagedObject::add(object);
    forEachNotifier([&](VActionNotifier& notifier) { notifier.objectCreated(object, interfaces, creator); });
}

void VActionNotifier::VObjectRemoval(const StrongPtr<VManagedObject>& object)
{
    forEachNotifier([&](VActionNotifier& notifier) { notifier.objectRemoved(object); });
}

} // namespace Orla
