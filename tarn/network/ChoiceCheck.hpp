#pragma once

#include <tarn/network/Network.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/ValuePool.hpp>

#include <cstdint>
#include <typeinfo>
#include <vector>

namespace Tarn {

/// Returns true for the type of a selection, whose text must choose what its object offers.
bool isSelection(const std::type_info& type) noexcept;

/// Finds texts that choose what an object does not offer.
///
/// An object may fill the list of a selection from its data. A text read before that names its
/// choice in advance, and the object replaces a choice that its data lacks. So a misspelt name
/// would silently choose something else.
class ChoiceCheck {
public:
    explicit ChoiceCheck(const std::vector<Network::Choice>& choices);

    /// Checks \p choice instead of an earlier one of its input.
    void replace(const Network::Choice& choice);

    /// Adds a fault per text that names a string that is not among the choices in \p pool. Lists
    /// that are empty, and those that have not changed since the last call, are not checked.
    void addFaults(const Orla::StrongPtr<Orla::ValuePool>& pool, Faults& faults);

private:
    struct Entry {
        Network::Choice choice;
        std::uint64_t seen = 0; // the age of the checked value
    };

    std::vector<Entry> m_entries;
};

} // namespace Tarn
