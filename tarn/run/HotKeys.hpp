#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// A key and the objects that listen to it.
struct SharedHotKey {
    char key = 0;
    std::vector<std::string> objects;
};

/// Returns the keys to which more than one announced object listens in a new pool, sorted by
/// signed character, each with its objects in registry order.
std::vector<SharedHotKey> sharedHotKeys();

/// Returns the name of a key for messages.
std::string nameOfKey(char key);

} // namespace Tarn
