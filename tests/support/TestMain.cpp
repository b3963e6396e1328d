#include <gmock/gmock.h>

#include <cstdlib>
#include <iostream>
#include <locale>
#include <stdexcept>

int main(int argc, char** argv)
{
    // The locale of the environment, for C and C++, as a host with a graphical
    // toolkit would set it: no test may depend on which it is.
    try {
        std::locale::global(std::locale{""});
    } catch (const std::runtime_error&) {
        std::cerr << "The environment (LC_ALL, LC_*, LANG) asks for a locale that this system lacks.\n";
        return EXIT_FAILURE;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
