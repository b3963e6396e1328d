#pragma once

#include <fathom/VUrlSystemHandler.hpp>

#include <string>

namespace Tarn {

/// Opens URLs in the user's browser: the program named in the environment variable BROWSER,
/// else `xdg-open`.
class UrlHandler final : public Orla::VUrlSystemHandler {
public:
    ~UrlHandler() override;

    /// Returns true if the program was started and did not fail within a second. Refuses all
    /// but http, https and file URLs: texts from data must not reach programs that do more
    /// than show a page.
    bool openUrl(const std::string& url) override;
};

} // namespace Tarn
