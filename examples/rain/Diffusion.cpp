#include "Diffusion.hpp"

#include <earth/Degree.hpp>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>

namespace Rain {

namespace {

constexpr double earthRadius = 6371.0088; // kilometres: (2 a + b) / 3 of WGS 84

// A row or column of cells. Each exchanges with the next, and the last with the first.
struct Chain {
    explicit Chain(std::size_t size) : values(size), weights(size, 1), links(size, 0), ratios(size), borders(size) {}

    // Solves the tridiagonal system of a backward Euler step,
    //
    //     weights[i] * (new[i] - values[i]) = links[i - 1] * (new[i - 1] - new[i])
    //                                         + links[i] * (new[i + 1] - new[i]),
    //
    // by elimination. The link from the last to the first, if any, is a correction of rank one
    // (Sherman and Morrison).
    void advance()
    {
        const std::size_t size = values.size();
        const double around = links.back();
        for (std::size_t i = 0; i < size; ++i)
            values[i] *= weights[i];
        std::fill(borders.begin(), borders.end(), 0.0);
        const double first = diagonal(0);
        borders.front() = -first;
        borders.back() = -around;
        // The corrected matrix has a first element of twice its size, and a larger last one.
        eliminate(around == 0 ? 0 : first, around == 0 ? 0 : around * around / first);
        if (around == 0)
            return;
        const double ratio = around / first;
        const double factor = (values.front() + ratio * values.back()) / (1 + borders.front() + ratio * borders.back());
        for (std::size_t i = 0; i < size; ++i)
            values[i] -= factor * borders[i];
    }

    std::vector<double> values;
    std::vector<double> weights; // positive
    std::vector<double> links;   // not negative; the last one is that to the first

private:
    double diagonal(std::size_t i) const { return weights[i] + links[i] + (i > 0 ? links[i - 1] : links.back()); }

    // Solves for `values` and `borders`, with additions to the first and last elements of the
    // diagonal.
    void eliminate(double toFirst, double toLast)
    {
        const std::size_t last = values.size() - 1;
        for (std::size_t i = 0; i <= last; ++i) {
            const double before = i > 0 ? links[i - 1] : 0;
            double pivot = diagonal(i) + (i == 0 ? toFirst : 0) + (i == last ? toLast : 0);
            if (i > 0) {
                pivot -= before * ratios[i - 1];
                values[i] += before * values[i - 1];
                borders[i] += before * borders[i - 1];
            }
            ratios[i] = links[i] / pivot;
            values[i] /= pivot;
            borders[i] /= pivot;
        }
        for (std::size_t i = last; i-- > 0;) {
            values[i] += ratios[i] * values[i + 1];
            borders[i] += ratios[i] * borders[i + 1];
        }
    }

    std::vector<double> ratios;
    std::vector<double> borders;
};

} // namespace

Diffusion::Diffusion(const Grid& grid, double amount) : m_grid{grid}
{
    assert(std::isfinite(amount) && amount >= 0);
    constexpr double smallest = 1e-9; // the cosine of a latitude that is a pole but for rounding
    const GridFrame& frame = grid.frame();
    const double angle = amount / (earthRadius * earthRadius);
    const double east = frame.eastStep * Earth::degree;
    const double north = frame.northStep * Earth::degree;
    const auto cosine = [&frame](double row) { return std::cos(frame.latitudeAt(row) * Earth::degree); };
    for (std::size_t row = 0; row < frame.rows; ++row) {
        const double here = cosine(static_cast<double>(row));
        const double weight = here < smallest ? 0 : here;
        m_weights.push_back(weight);
        m_alongRow.push_back(weight == 0 ? 0 : angle / (weight * weight * east * east));
        m_betweenRows.push_back(angle * cosine(static_cast<double>(row) + 0.5) / (north * north));
    }
}

bool Diffusion::isLinked(std::size_t cell, std::size_t neighbour) const noexcept
{
    return !std::isnan((*m_grid.values())[cell]) && !std::isnan((*m_grid.values())[neighbour]);
}

void Diffusion::advance(std::vector<double>& values) const
{
    advanceRows(values);
    advanceColumns(values);
}

void Diffusion::advanceRows(std::vector<double>& values) const
{
    const GridFrame& frame = m_grid.frame();
    Chain chain{frame.columns};
    for (std::size_t row = 0; row < frame.rows; ++row) {
        const std::size_t first = row * frame.columns;
        for (std::size_t column = 0; column < frame.columns; ++column) {
            const std::size_t cell = first + column;
            const bool isLast = column + 1 == frame.columns;
            const std::size_t next = isLast ? first : cell + 1;
            chain.values[column] = std::isnan(values[cell]) ? 0 : values[cell];
            const bool isBeside = !isLast || (frame.isWholeTurn() && column > 0);
            chain.links[column] = isBeside && isLinked(cell, next) ? m_alongRow[row] : 0;
        }
        chain.advance();
        for (std::size_t column = 0; column < frame.columns; ++column) {
            if (!std::isnan(values[first + column]))
                values[first + column] = chain.values[column];
        }
    }
}

void Diffusion::advanceColumns(std::vector<double>& values) const
{
    const GridFrame& frame = m_grid.frame();
    Chain chain{frame.rows};
    for (std::size_t column = 0; column < frame.columns; ++column) {
        for (std::size_t row = 0; row < frame.rows; ++row) {
            const std::size_t cell = row * frame.columns + column;
            const bool hasArea = m_weights[row] > 0;
            const bool isLinkedToNext =
                row + 1 < frame.rows && hasArea && m_weights[row + 1] > 0 && isLinked(cell, cell + frame.columns);
            chain.values[row] = std::isnan(values[cell]) ? 0 : values[cell];
            chain.weights[row] = hasArea ? m_weights[row] : 1;
            chain.links[row] = isLinkedToNext ? m_betweenRows[row] : 0;
        }
        chain.advance();
        for (std::size_t row = 0; row < frame.rows; ++row) {
            const std::size_t cell = row * frame.columns + column;
            if (!std::isnan(values[cell]))
                values[cell] = chain.values[row];
        }
    }
}

} // namespace Rain
