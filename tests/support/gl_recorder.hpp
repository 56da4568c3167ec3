#pragma once

#include <string>
#include <vector>

namespace korl::test {

/// The fixed-function calls that have gone to this program's own OpenGL functions since the last time this
/// was called. A call reads like "glLightfv LIGHT0 AMBIENT 0.2 0.4 0.8 1", its numbers the shortest that read
/// back to the same bits; `glLightfv` is always given four.
///
/// Link gl_recorder.cpp into a program that exports its symbols: the functions then stand before the
/// library's, which they call.
[[gnu::visibility("default")]] std::vector<std::string> takeRecordedCalls();

} // namespace korl::test
