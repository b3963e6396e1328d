#include <tarn/network/GraphPicture.hpp>

#include <tarn/text/Messages.hpp>

#include <trellis/VActionNotifier.hpp>

#include <graphviz/gvc.h>

#include <memory>
#include <stdexcept>

namespace Tarn {

namespace {

// Graphviz reports a complaint in pieces.
std::string& complaints()
{
    static std::string text;
    return text;
}

int complain(char* piece)
{
    complaints() += piece;
    return 0;
}

std::string takeComplaints()
{
    std::string text;
    text.swap(complaints());
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

[[noreturn]] void fail()
{
    const std::string why = takeComplaints();
    throw std::runtime_error("the network cannot be drawn: "
                             + (why.empty() ? std::string("Graphviz gives no reason") : printable(why)));
}

struct Closer {
    void operator()(Agraph_t* graph) const { ::agclose(graph); }
    void operator()(GVC_t* context) const { ::gvFreeContext(context); }
};

// One context for the whole process: the text renderer keeps the name of its last font,
// which would be destroyed with the context of the previous picture.
GVC_t* theContext()
{
    static const std::unique_ptr<GVC_t, Closer> context(::gvContext());
    return context.get();
}

} // namespace

std::string drawGraph(const std::string& dot, PictureFormat format)
{
    complaints().clear();
    ::agseterrf(&complain);
    ::agreseterrors();
    GVC_t* const context = theContext();
    const std::unique_ptr<Agraph_t, Closer> graph(::agmemread(dot.c_str()));
    if (!graph || ::gvLayout(context, graph.get(), "dot") != 0)
        fail();
    char* bytes = nullptr;
    unsigned int length = 0;
    const char* const renderer = format == PictureFormat::Svg ? "svg:svg" : "png:cairo";
    const int status = ::gvRenderData(context, graph.get(), renderer, &bytes, &length);
    std::string picture;
    if (bytes) {
        picture.assign(bytes, length);
        ::gvFreeRenderData(bytes);
    }
    ::gvFreeLayout(context, graph.get());
    // An error may leave an incomplete picture.
    if (status != 0 || picture.empty() || ::agerrors() >= AGERR)
        fail();
    if (const std::string warning = takeComplaints(); !warning.empty())
        Orla::VActionNotifier::Warning(printable(warning));
    return picture;
}

} // namespace Tarn
