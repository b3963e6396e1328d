#include <fathom/VTime.hpp>
#include <gable/FixedArray.hpp>
#include <loam/StrongPtr.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VValueCreator.hpp>

#include <dlfcn.h>

#include <iostream>
#include <string>

namespace {

int failures = 0;

void expect(bool condition, const char* what)
{
    if (!condition) {
        std::cerr << "failed: " << what << '\n';
        ++failures;
    }
}

void valuesAreCreatedByNameAndText()
{
    bool ok = false;
    const Orla::StrongPtr<Orla::VValueBase> value = Orla::VValueCreator::createValue("VTime", "5[0,10]@0.5", ok);
    const Orla::StrongPtr<Orla::VValue<Orla::VTime>> typed{value};
    expect(ok && typed, "VTime is registered and its text is accepted");
    if (!typed)
        return;

    Orla::VTime time;
    expect(typed->getValue(time), "the value can be read");
    const Gyre::FixedArray numbers{time.time, time.range.begin, time.range.end, time.dt};
    expect(numbers == Gyre::FixedArray{5.0, 0.0, 10.0, 0.5}, "the numbers are those of the text");
    expect(value->Text() == "5[0,10]@0.5", "the value has the text that it was created from");

    Orla::VValueCreator::createValue("VTime", "noon", ok);
    expect(!ok, "a text that is not a time is refused");
}

void objectsAreEvaluated()
{
    const Orla::StrongPtr<Orla::VObject> tide = Orla::VObject::createObject("Tide", "spring");
    expect(bool(tide), "the object type of the loaded library is registered");
    if (!tide)
        return;

    expect(bool(Orla::VValueCreator::find("Gauge")), "the value type of the loaded library is registered");
    expect(tide->findSlot("time")->setInitialText("5[2,10]@1"), "an input accepts a text");
    expect(tide->findSlot("gauge")->setInitialText("1.5"), "an input of the library's own type accepts a text");
    const Loam::StrongPtr<Orla::ValuePool> pool = Loam::makeStrong<Orla::ValuePool>("consumer");
    Orla::VScheduler::scheduleAll(pool);
    const Orla::VScheduler::Summary summary = Orla::VScheduler::run(pool);
    expect(summary.updates == 1 && summary.failures == 0, "the object is updated once");
    const Orla::StrongPtr<Orla::VValueBase> height = tide->findOutput("height")->getValueBase(pool);
    expect(height && height->Text() == "4.5", "the output holds the computed height");
    Orla::VManagedObject::remove(tide);
}

void loadAndUnload(const char* path)
{
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        expect(false, dlerror());
        return;
    }
    objectsAreEvaluated();
    dlclose(library);
    expect(!Orla::VObjectCreator::find("Tide"), "the object type is removed with its library");
    expect(!Orla::VValueCreator::find("Gauge"), "the value type is removed with its library");
    expect(!dlopen(path, RTLD_NOW | RTLD_NOLOAD), "the library is unloaded");
}

} // namespace

int main(int argc, char** argv)
{
    valuesAreCreatedByNameAndText();
    for (int i = 1; i < argc; ++i)
        loadAndUnload(argv[i]);
    return failures == 0 ? 0 : 1;
}
