#include "Diffusion.hpp"
#include "Grid.hpp"

#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace Rain {

using Orla::describe;
using Orla::StrongPtr;
using Orla::TypedSlot;

/// Smooths a grid by diffusion, which depends on time: see `Diffusion`. The input `range` gives
/// the days since the start at the times 0 and 1; `diffusivity` is in square kilometres per
/// day; `step` is the length of a step of the computation in days.
///
/// The grid at a time follows from the grid at an earlier time, which the pool holds. It depends
/// only on the whole number of steps since the start: a run in few or many time steps, forward
/// or back, has the same results. A time before that of the grid in the pool, and a change of
/// the other inputs, begin at the start again. Before the start, the grid is the input.
///
/// The output `days` is the time that the grid has reached, and `note` describes the diffusion.
class GridDiffusion : public Orla::VObject, public Orla::TimeDependent {
public:
    GridDiffusion(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, Orla::VTime{0}}
    {
        rangeSlot().slot()->describe(describe("The days since the start at the times 0 and 1.").in("d"));
    }

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const double diffusivity = positive(m_diffusivity, pool);
        const double step = positive(m_step, pool);
        const double wanted = stepsIn(pool, step);
        double done = m_steps.value(pool);
        Grid grid = m_result.value(pool);
        if (request.hasChanged(m_grid) || request.hasChanged(m_diffusivity) || request.hasChanged(m_step)
            || wanted < done) {
            grid = m_grid.value(pool);
            done = 0;
        }
        if (done < wanted && !grid.empty()) {
            std::vector<double> values(grid.values()->begin(), grid.values()->end());
            const Diffusion diffusion{grid, diffusivity * step};
            for (double i = done; i < wanted; ++i) {
                request.reportProgress((i - done) / (wanted - done));
                if (request.isCancelled())
                    return false;
                diffusion.advance(values);
            }
            grid = Grid{grid.frame(), values};
        }
        m_result(pool) <<= grid;
        m_steps(pool) <<= wanted;
        m_days(pool) <<= wanted * step;
        m_note(pool) <<= Loam::numberText(wanted * step) + " days of diffusion at " + Loam::numberText(diffusivity)
                         + " km\u00b2 per day";
        return true;
    }

private:
    static double positive(const TypedSlot<double>& slot, const StrongPtr<Orla::ValuePool>& pool)
    {
        const double number = slot.value(pool);
        if (!std::isfinite(number) || number <= 0)
            throw std::runtime_error{"the input \"" + slot.name() + "\" is " + Loam::numberText(number)
                                     + ", expected a positive number"};
        return number;
    }

    // Returns the number of whole steps from the start to the current time.
    double stepsIn(const StrongPtr<Orla::ValuePool>& pool, double step) const
    {
        constexpr double most = 1e9;
        constexpr double rounding = 1e-9;
        const double days = getTime(pool, 0, Orla::Range{});
        // This form of the comparison also refuses NaN.
        if (!(days / step <= most))
            throw std::runtime_error{"found " + Loam::numberText(days) + " days in steps of " + Loam::numberText(step)
                                     + " days, expected at most " + Loam::numberText(most) + " steps"};
        return std::max(std::floor(days / step + rounding), 0.0);
    }

    TypedSlot<Grid> m_grid{this, "grid", Grid{}, describe("The grid at the start.")};
    TypedSlot<double> m_diffusivity{
        this, "diffusivity", 1000.0,
        describe("How fast values spread.").in("km\u00b2/d").above(0).finite().softLimits(10, 1e5).logarithmic()};
    TypedSlot<double> m_step{this, "step", 1.0,
                             describe("The length of a step of the computation.").in("d").above(0).finite(), 1};
    // State of the object that belongs to a pool is stored in the pool.
    Orla::VOutput<Grid> m_result{this, "grid", Grid{}, describe("The grid at the current time.")};
    Orla::VOutput<double> m_steps{this, "steps", 0.0, describe("How many steps the grid has made.").asPrivateState()};
    Orla::VOutput<double> m_days{this, "days", 0.0, describe("The time that the grid has reached.").in("d")};
    Orla::VOutput<std::string> m_note{this, "note", "", describe("A text for the title of a picture.")};
};

} // namespace Rain

namespace {

const Orla::VObjectType<Rain::GridDiffusion> gridDiffusionType{
    "GridDiffusion", Orla::describeType("Smooths a grid by diffusion, which depends on time.")
                         .category("Grids")
                         .keywords("smooth", "heat equation", "simulation")};

} // namespace
