#pragma once

#include <string>

namespace Tarn {

enum class PictureFormat { Svg, Png };

/// The picture that Graphviz makes of \p dot, a graph in its language: the same on
/// every run and under every locale. What Graphviz complains of is said through
/// `VActionNotifier::Warning`.
/// \throw std::runtime_error if there is no picture.
std::string drawGraph(const std::string& dot, PictureFormat format);

} // namespace Tarn
