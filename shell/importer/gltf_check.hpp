#pragma once

#include "shell/importer/companion_files.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace korl {

/// Refuses glTF models that must not come before a reader that trusts them: those that are not of version 2;
/// with a buffer that is not a regular file, or that lies where the model's place doesn't allow it; with a
/// view beyond its buffer, or an accessor beyond its view; with a node that has two parents or that lies more
/// than 64 deep in others.
/// @param json the text of a .gltf file, or of the first chunk of a .glb file.
/// @param binary_chunk the bytes of the second chunk of a .glb file, which is the first buffer.
/// Throws Error with the reason and its place, a JSON pointer, which doesn't name the file.
void requireSoundGltf(std::string json, const ModelPlace& place,
                      std::optional<std::uint64_t> binary_chunk = std::nullopt);

} // namespace korl
