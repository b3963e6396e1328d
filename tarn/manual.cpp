#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/ManPage.hpp>
#include <tarn/commands/Commands.hpp>

#include <loam/FileError.hpp>
#include <loam/OutputFile.hpp>

#include <iostream>

// Writes the manual page to the given file; part of the build, not installed.
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "tarn-manual: expected the name of the output file\n";
        return Tarn::WrongUsage;
    }
    try {
        Loam::OutputFile file{argv[1]};
        file.write(Tarn::manPage(Tarn::commands()));
        file.commit();
        return Tarn::Fine;
    } catch (const Loam::FileError& error) {
        std::cerr << "tarn-manual: " << error.what() << '\n';
        return Tarn::FileFailed;
    }
}
