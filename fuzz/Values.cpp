#include "Support.hpp"

#include <trellis/VValueCreator.hpp>

#include <string>
#include <vector>

// Reads texts into values of every registered type. The first byte of an input selects the
// type; each further line is read into the same value.

namespace {

using Value = Orla::StrongPtr<Orla::VValueBase>;

const std::vector<std::string>& types()
{
    static const std::vector<std::string> names = [] {
        Fuzz::prepareHost();
        std::vector<std::string> all;
        for (const std::string& name : Orla::VValueCreator::names()) {
            if (name != "Ticket") // a test object's value that no text restores
                all.push_back(name);
        }
        return all;
    }();
    return names;
}

// Returns the text that reading `written` into a copy of `value` leads to.
std::string textAfterReading(const Value& value, const std::string& written)
{
    const Value copy = value->copy();
    copy->setValueFromText(written);
    return copy->Text();
}

void check(const std::string& type, const Value& value)
{
    const std::string written = value->Text();
    const Value copy = value->copy();
    Fuzz::requireEqual(copy->Text(), written, "a copy has the text of its original, type " + type);
    const std::string once = textAfterReading(value, written);
    Fuzz::requireEqual(textAfterReading(value, once), once, "the text form is stable, type " + type);
    Fuzz::require(copy->getValueFrom(value), "a value takes the content of its type");
    Fuzz::requireEqual(copy->Text(), written, "an assigned value has the text of its source, type " + type);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return -1;
    const std::string& type = types()[data[0] % types().size()];
    std::string_view rest = Fuzz::textOf(data + 1, size - 1);
    std::size_t end = rest.find('\n');
    bool ok = false;
    const Value value = Orla::VValueCreator::createValue(type, std::string(rest.substr(0, end)), ok);
    Fuzz::require(bool(value), "a registered type has values");
    check(type, value);
    while (end != std::string_view::npos) {
        rest.remove_prefix(end + 1);
        end = rest.find('\n');
        value->setValueFromText(std::string(rest.substr(0, end)));
        check(type, value);
    }
    return 0;
}
