#pragma once

#include <tarn/network/Network.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/ValuePool.hpp>

#include <cstdint>
#include <vector>

namespace Tarn {

/// Finds texts that choose what an object does not offer.
///
/// An object may fill the list of a selection from its data. A text read before that names its
/// choice in advance, and the object replaces a choice that its data lacks. So a misspelt name
/// would silently choose something else.
class ChoiceCheck {
public:
    /// \p network must outlive the check.
    explicit ChoiceCheck(const Network& network) : m_network{network}, m_seen(network.choices.size()) {}

    /// Adds a fault per text that names a string that is not among the choices in \p pool. Lists
    /// that are empty, and those that have not changed since the last call, are not checked.
    void addFaults(const Orla::StrongPtr<Orla::ValuePool>& pool, Faults& faults);

private:
    const Network& m_network;
    std::vector<std::uint64_t> m_seen; // the ages of the checked values
};

} // namespace Tarn
