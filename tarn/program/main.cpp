#include <tarn/program/Program.hpp>

int main(int argc, char** argv)
{
    return Tarn::runProgram(argc, argv);
}
