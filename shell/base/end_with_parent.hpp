#pragma once

#include <sys/types.h>

namespace korl {

/// Has the system kill this process when its parent ends, and ends it now where the parent has gone already.
void endWithParent(pid_t parent);

} // namespace korl
