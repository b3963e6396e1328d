#include <tarn/study/Sweep.hpp>

#include <tarn/text/Messages.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Tarn {

using Loam::Failure;
using Loam::Result;

Result<void> Sweep::add(const std::string& input, std::vector<std::string> texts)
{
    std::vector<std::vector<std::string>> rows;
    for (std::string& text : texts)
        rows.push_back({std::move(text)});
    return addRows({input}, std::move(rows));
}

Result<void> Sweep::addRows(const std::vector<std::string>& inputs, std::vector<std::vector<std::string>> rows)
{
    if (inputs.empty())
        return Failure{"found no inputs, expected one or more"};
    if (rows.empty())
        return Failure{"found no texts, expected one per case"};
    for (auto input = inputs.begin(); input != inputs.end(); ++input) {
        if (std::ranges::find(m_inputs, *input) != m_inputs.end() || std::find(inputs.begin(), input, *input) != input)
            return Failure{"the input " + inQuotes(*input) + " is varied twice"};
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].size() != inputs.size())
            return Failure{"found " + counted(rows[i].size(), "text") + " in row " + std::to_string(i + 1)
                           + ", expected one per input, " + std::to_string(inputs.size())};
    }
    if (rows.size() > MostCases / m_caseCount)
        return Failure{"a study has at most " + std::to_string(MostCases) + " cases, found "
                       + std::to_string(m_caseCount) + " times " + std::to_string(rows.size())};
    m_caseCount *= rows.size();
    m_factors.push_back({m_inputs.size(), std::move(rows)});
    m_inputs.insert(m_inputs.end(), inputs.begin(), inputs.end());
    return {};
}

std::vector<std::string> Sweep::texts(std::uint64_t number) const
{
    std::vector<const std::vector<std::string>*> chosen;
    for (auto factor = m_factors.rbegin(); factor != m_factors.rend(); ++factor) {
        chosen.push_back(&factor->rows[number % factor->rows.size()]);
        number /= factor->rows.size();
    }
    std::vector<std::string> texts;
    for (auto row = chosen.rbegin(); row != chosen.rend(); ++row)
        std::ranges::copy(**row, std::back_inserter(texts));
    return texts;
}

} // namespace Tarn
