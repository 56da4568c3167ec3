#pragma once

#include <cstdint>

namespace korl {

/// Ends this process with `import_exit_code_no_memory` when it wants more memory than these bytes, and leaves
/// no core dump.
void limitMemory(std::uint64_t bytes);

} // namespace korl
