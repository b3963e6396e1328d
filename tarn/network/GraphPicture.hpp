#pragma once

#include <string>

namespace Tarn {

enum class PictureFormat { Svg, Png };

/// Returns the picture that Graphviz draws of \p dot, a graph in its language. It is the same
/// on every run and under every locale. Complaints of Graphviz are passed to
/// `VActionNotifier::Warning`.
/// \throw std::runtime_error if the graph cannot be drawn.
std::string drawGraph(const std::string& dot, PictureFormat format);

} // namespace Tarn
