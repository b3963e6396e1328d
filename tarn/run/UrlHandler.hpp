#pragma once

#include <fathom/VUrlSystemHandler.hpp>

#include <string>

namespace Tarn {

/// Opens URLs in the user's browser: in the program that the environment variable
/// BROWSER names, else with `xdg-open`.
class UrlHandler final : public Orla::VUrlSystemHandler {
public:
    ~UrlHandler() override;

    /// True if the program was started and has not failed within a second. Refuses
    /// what is no http, https or file URL, for texts from data must not reach
    /// programs that do more than show a page.
    bool openUrl(const std::string& url) override;
};

} // namespace Tarn
