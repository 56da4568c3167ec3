#include "shell/base/standard_streams.hpp"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace korl {

void openStandardStreams() noexcept {
    // In this order, since the system gives the lowest number that is free.
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF)
            static_cast<void>(::open("/dev/null", O_RDWR));
}

} // namespace korl
