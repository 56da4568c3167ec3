#pragma once

#include <cstddef>
#include <cstdint>

/// Reads bytes as a scene file. What is read must be written, read and written again as the same bytes; what
/// is refused must leave the scene empty. Ends the process where that does not hold. Files that the scene
/// names are not opened.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
