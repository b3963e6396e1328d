#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// A key and those who listen to it.
struct SharedHotKey {
    char key = 0;
    std::vector<std::string> objects;
};

/// The keys to which more than one announced object listens at first, by signed
/// character; the objects in the order of the registry.
std::vector<SharedHotKey> sharedHotKeys();

/// How messages show a key.
std::string nameOfKey(char key);

} // namespace Tarn
