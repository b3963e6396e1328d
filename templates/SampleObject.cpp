#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <cmath>
#include <stdexcept>

namespace {

/// Multiplies a number by a factor. Fails if the factor is not finite.
class SampleObject final : public Orla::VObject {
public:
    using Orla::VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const double factor = m_factor.value(pool);
        if (!std::isfinite(factor))
            throw std::runtime_error{"the factor is not finite"};
        m_result(pool) <<= factor * m_number.value(pool);
        return true;
    }

private:
    Orla::TypedSlot<double> m_number{this, "number", 0.0, Orla::describe("The number to multiply.")};
    Orla::TypedSlot<double> m_factor{this, "factor", 2.0,
                                     Orla::describe("What it is multiplied by.").softLimits(0, 10)};
    Orla::VOutput<double> m_result{this, "result", 0.0, Orla::describe("The product.")};
};

const Orla::VObjectType<SampleObject> registered{"SampleObject",
                                                 Orla::describeType("Multiplies a number by a factor.")};

} // namespace
