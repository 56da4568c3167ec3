#pragma once

#include <cstdint>
#include <sys/types.h>

namespace korl {

/// Ends this process when its parent ends, or now where that has ended already.
void endWithParent(pid_t parent);

/// Ends this process with `import_exit_code_no_memory` when it wants more memory than these bytes, and leaves
/// no core dump.
void limitMemory(std::uint64_t bytes);

} // namespace korl
