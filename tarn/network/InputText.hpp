#pragma once

#include <loam/Result.hpp>

#include <trellis/VSlot.hpp>

#include <string>

namespace Tarn {

/// Returns the value that \p text gives \p input, read into a copy of \p declared. The name of a
/// choice selects it: "Africa" instead of "Africa@Africa|Asia|". Fails with what was expected if
/// the type refuses the text, or the value is outside the limits of the input.
Loam::Result<Orla::StrongPtr<Orla::VValueBase>> readInputText(const Orla::VSlot& input,
                                                              const Orla::StrongPtr<Orla::VValueBase>& declared,
                                                              const std::string& text);

} // namespace Tarn
