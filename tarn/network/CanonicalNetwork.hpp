#pragma once

#include <tarn/network/NetworkFile.hpp>
#include <tarn/network/NetworkInputs.hpp>
#include <tarn/text/Faults.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

/// A saved network whose texts are those that the values of the inputs have, in the order in
/// which the objects declare the inputs.
class CanonicalNetwork {
public:
    /// A text for an input of type `string`: the index of its object and its own index there.
    struct HeldText {
        std::size_t object;
        std::size_t text;
        bool namesResult;
    };

    CanonicalNetwork() = default;

    /// \p inputs are those of the objects in \p file. A value that no text can keep is added to
    /// \p faults.
    CanonicalNetwork(NetworkFile file, const NetworkInputs& inputs, Faults& faults);

    const NetworkFile& file() const noexcept { return m_file; }
    NetworkFile& file() noexcept { return m_file; }
    const std::vector<HeldText>& heldTexts() const noexcept { return m_heldTexts; }

private:
    void keepValue(std::size_t object, const NetworkInputs::Input& input, Faults& faults);

    NetworkFile m_file;
    std::vector<HeldText> m_heldTexts;
};

/// Returns \p file as TOML, after reading the text again.
/// \throw std::logic_error if the text would not read back unchanged; \p faults names the file.
std::string canonicalText(const NetworkFile& file, const Faults& faults);

} // namespace Tarn
