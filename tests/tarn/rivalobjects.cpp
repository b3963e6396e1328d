// An object library with types whose names other libraries use as well.

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace {

class Adder final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        m_sum(request.valuePool()) <<= 17;
        return true;
    }

private:
    Orla::VOutput<double> m_sum{this, "sum", 0.0};
};

const Orla::VObjectType<Adder> adderType{"Adder"};

} // namespace
