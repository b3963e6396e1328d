#pragma once

#include <fathom/VUrlSystemHandler.hpp>

#include <string>

namespace Tarn {

/// Opens URLs in the user's browser: the first command in the environment variable BROWSER that
/// works, or `xdg-open` if the variable is empty.
///
/// BROWSER is a list of commands, separated by colons. Each is a program and its arguments,
/// separated by blanks; quotes and backslashes protect blanks. The URL replaces "%s", or
/// becomes the last argument; "%%" is a percent sign and "%c" a colon. No shell is involved.
class UrlHandler final : public Orla::VUrlSystemHandler {
public:
    ~UrlHandler() override;

    /// Returns true if a program was started and did not fail within a second. Refuses all
    /// but http, https and file URLs: texts from data must not reach programs that do more
    /// than show a page.
    bool openUrl(const std::string& url) override;
};

} // namespace Tarn
