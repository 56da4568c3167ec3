#pragma once

#include <cstdint>
#include <string_view>

namespace korl {

class Scene;

/// Sums up what it is given into 64 bits (FNV-1a). Equal input gives an equal number, in every process; other
/// input gives another one but for a chance that is far below that of a damaged disk.
class Fingerprint {
public:
    void add(std::string_view text); ///< its length included, so that "ab", "c" differs from "a", "bc"
    void add(double number);         ///< by its bits
    void addBytes(const void* bytes, std::size_t count);

    std::uint64_t value() const noexcept { return my_value; }

private:
    std::uint64_t my_value = 0xcbf29ce484222325;
};

/// A fingerprint of all in the scene that pictures depend on: objects with their types, values, connections
/// and mutes, the views' own values, the meshes' contents, camera and background.
std::uint64_t fingerprintOf(const Scene& scene);

} // namespace korl
