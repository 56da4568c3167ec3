#pragma once

namespace korl {

/// Opens those of the descriptors 0, 1 and 2 that are closed on the null device. Otherwise the next files and
/// connections that are opened would get these numbers, and be written to as standard output or error.
void openStandardStreams() noexcept;

} // namespace korl
