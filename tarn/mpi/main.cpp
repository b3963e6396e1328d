#include <tarn/mpi/MpiRanks.hpp>

#include <tarn/commands/CommandLine.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/RunStudy.hpp>
#include <tarn/program/Program.hpp>

#include <cstring>

namespace {

using namespace Tarn;

// Commands other than studies are performed by the first rank alone.
int performInRanks(const CommandLine& line, const StandardStreams& streams)
{
    const bool isShared = line.request == CommandLine::Request::Perform
                          && std::strcmp(line.command->name.c_str(), "run") == 0 && isStudy(line.arguments);
    return isShared || Ranks::current()->isFirst() ? perform(line, streams) : Fine;
}

} // namespace

int main(int argc, char** argv)
{
    MpiRanks ranks{argc, argv};
    Ranks::setCurrent(&ranks);
    return ranks.finish(runProgram(argc, argv, performInRanks));
}
