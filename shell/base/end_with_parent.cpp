#include "shell/base/end_with_parent.hpp"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace korl {

void endWithParent(pid_t parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
}

} // namespace korl
