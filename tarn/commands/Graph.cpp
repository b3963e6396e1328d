#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/network/GraphPicture.hpp>
#include <tarn/network/NetworkGraph.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/OutputFile.hpp>

#include <memory>
#include <optional>

namespace Tarn {

namespace {

constexpr char Shape[] = "FILE.svg|.png|.dot";

enum class DrawingKind { Dot, Svg, Png };

DrawingKind kindOf(const std::string& output)
{
    if (isStandardOutput(output) || output.ends_with(".dot"))
        return DrawingKind::Dot;
    if (output.ends_with(".svg"))
        return DrawingKind::Svg;
    if (output.ends_with(".png"))
        return DrawingKind::Png;
    throw UsageError{"--output=" + printable(output) + ": expected a name that ends in .svg, .png or .dot"};
}

NetworkGraph graphOf(const Session& session)
{
    const Orla::VNetwork::Scope scope{session.network()};
    return NetworkGraph::of(session.core()->network());
}

int performGraph(const Arguments& arguments, const StandardStreams& streams)
{
    const std::optional<std::string> output = arguments.text("output");
    if (!output)
        throw UsageError{"no --output, expected --output=" + std::string(Shape)};
    const DrawingKind kind = kindOf(*output);
    const bool isFile = !isStandardOutput(*output);
    const std::string network = findNetwork(arguments.names[0]);
    const Interruption interruption;
    const std::string path = resultPath("output", *output, network);

    const Session session = Session::load(network);
    if (!session.faults().empty())
        return reportFaults(session.faults(), "; nothing was drawn");
    const NetworkGraph graph = graphOf(session);
    std::string picture = dotText(graph);
    if (kind != DrawingKind::Dot && graph.objects.size() > MostLaidOutWell)
        printLine(session.faults().file() + ": note: with " + counted(graph.objects.size(), "object")
                  + " the picture is laid out roughly and may take minutes; --output=FILE.dot writes the text form "
                    "at once");
    if (kind != DrawingKind::Dot)
        picture = drawGraph(picture, kind == DrawingKind::Svg ? PictureFormat::Svg : PictureFormat::Png);
    const std::unique_ptr<Loam::OutputFile> file = openResult(path, streams);
    file->write(picture);
    if (Interruption::signal() != 0)
        return reportNothingWritten();
    file->commit();
    printLine(session.faults().file() + ": " + counted(graph.objects.size(), "object") + ", "
              + counted(graph.connections.size(), "connection") + ", drawn to "
              + (isFile ? printable(*output) : "standard output"));
    return Fine;
}

} // namespace

const Command& graphCommand()
{
    static const Command command{
        .name = "graph",
        .nameShape = "NETWORK.toml",
        .fewestNames = 1,
        .mostNames = 1,
        .summary = "Draws a network.",
        .help = R"(Loads the network as "tarn check" does and draws its objects as boxes, inputs on the
left and outputs on the right, with the connections in the colours of their types.
Dashed connections are not in the file but were made automatically. If there are
faults, nothing is drawn.

Pictures of more than 1000 objects have straight lines and may take minutes. The text form
is written at once, and other programs can search, filter and draw it.
)",
        .options =
            {
                {.name = "output",
                 .shape = Shape,
                 .help = "The file to write; its ending selects the form. \"-\"\n"
                         "writes the text for Graphviz to standard output."},
            },
        .libraryFolders = NetworkFolders,
        .perform = &performGraph,
    };
    return command;
}

} // namespace Tarn
