#include <gmock/gmock.h>

#include <cstdlib>
#include <iostream>
#include <locale>
#include <stdexcept>

int main(int argc, char** argv)
{
    // Set the environment's locale for C and C++, as a host with a graphical toolkit
    // would: no test may depend on the locale.
    try {
        std::locale::global(std::locale{""});
    } catch (const std::runtime_error&) {
        std::cerr << "The locale set in the environment (LC_ALL, LC_*, LANG) is not available on this system.\n";
        return EXIT_FAILURE;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
