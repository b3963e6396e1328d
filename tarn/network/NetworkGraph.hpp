#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

struct Network;

/// Maximum number of objects in a drawing whose layout is refined. Larger drawings have straight
/// lines and uneven distances.
inline constexpr std::size_t MostLaidOutWell = 1000;

/// The objects of the current network and their connections, for a drawing.
struct NetworkGraph {
    struct Object {
        std::string name;
        std::string type; ///< the registered name if there is one
        std::vector<std::string> inputs;
        std::vector<std::string> outputs;
    };

    /// One end of a connection.
    struct End {
        std::size_t object = 0; ///< its number among the objects
        std::size_t slot = 0;   ///< its number among the object's outputs or inputs
    };

    struct Connection {
        End output;
        bool passesInputOn = false; ///< `output` refers to an input of its object
        End input;
        std::string member;      ///< the component of the value that is read; empty for the whole value
        std::string type;        ///< label of the type of the value that is read
        std::string colour;      ///< of that type; empty if it has none
        bool isImplicit = false; ///< not in the network's file; connected automatically
    };

    std::vector<Object> objects; ///< in the order of announcement
    std::vector<Connection> connections;

    /// Returns the graph of all announced objects. \p network lists the connections named in
    /// its file. An unannounced object is included if another object reads from it.
    static NetworkGraph of(const Network& network);
};

/// Returns the graph in the language of Graphviz: objects as boxes with their inputs and
/// outputs, implicit connections dashed, and a legend of the types. The text is valid UTF-8
/// even if names are not; the same graph gives the same text.
std::string dotText(const NetworkGraph& graph);

} // namespace Tarn
