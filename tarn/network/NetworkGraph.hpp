#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

struct Network;

/// Who reads whom in the network of the process, as a drawing shows it.
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
        bool passesInputOn = false; ///< `output` is an input that another object owns
        End input;
        std::string member;      ///< the component of the value that is read; empty for all of it
        std::string type;        ///< of what travels
        std::string colour;      ///< of that type; empty if it has none
        bool isImplicit = false; ///< not in the network's file: the objects found each other
    };

    std::vector<Object> objects; ///< in the order in which they were announced
    std::vector<Connection> connections;

    /// The graph of all announced objects, of which \p network has the connections
    /// that its file names. What an object reads from one that was not announced is
    /// in it with that object.
    static NetworkGraph of(const Network& network);
};

/// The graph in the language of Graphviz: objects as boxes with their inputs and
/// outputs, implicit connections dashed, and a legend of the types. UTF-8 whatever
/// names hold; the same graph gives the same text.
std::string dotText(const NetworkGraph& graph);

} // namespace Tarn
