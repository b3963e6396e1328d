// The objects of the networks that benchmarks load.

#include "Adder.hpp"

#include <fathom/Chunk.hpp>

#include <trellis/VObjectCreator.hpp>

namespace {

using Numbers = Orla::StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;

// Reads an array as cheaply as possible.
class FirstNumber : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const Orla::StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Numbers& array = numbers.value(pool);
        first(pool) << (array && array->size() > 0 ? (*array)[0] : 0.0);
        return true;
    }

    Orla::TypedSlot<Numbers> numbers{this, "numbers", Numbers{}, 0};
    Orla::VOutput<double> first{this, "first", 0.0};
};

const Orla::VObjectType<Orla::Adder> adderType{"LibraryAdder"};
const Orla::VObjectType<FirstNumber> firstNumberType{"FirstNumber"};

} // namespace
