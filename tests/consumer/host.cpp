#include <tarn/tarn.hpp>

#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace {

const std::string network = R"(format = 1
libraries = ["tides"]

[[object]]
name = "clock"
type = "GlobalTime"
set = { time = "2[2,4]@1" }

[[object]]
name = "spring"
type = "Tide"
set = { gauge = "1.5" }
connect = { time = "clock.GlobalTime" }

[[column]]
title = "height"
value = "spring.height"
)";

} // namespace

// The argument is the object library of this project. The standard objects must be found beside
// the host's library, which is not beside this program.
int main(int, char** arguments)
{
    const std::string folder = std::filesystem::absolute(arguments[1]).parent_path().string();
    const Tarn::Session session = Tarn::Session::read(network, "tides.toml", folder);
    for (const std::string& line : session.faults().lines())
        std::cerr << line << '\n';
    Tarn::Context context{session};
    std::vector<double> heights;
    while (context.evaluateStep()) {
        const Loam::Result<double> height = context.get<double>("spring.height");
        heights.push_back(height ? *height : -1);
    }
    if (session.faults().empty() && context.summary().isFine() && heights == std::vector<double>{-1.5, 0.5, 2.5})
        return 0;
    std::cerr << "failed: the heights are computed; found";
    for (const double height : heights)
        std::cerr << ' ' << height;
    std::cerr << '\n';
    return 1;
}
