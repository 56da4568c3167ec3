#pragma once

namespace korl {

/// Makes frames for the shell at the other end of a socket until that end is closed: takes a job, loads its
/// modules and its scene, then takes one request after the other.
///
/// It is a program's whole work. On SIGTERM the program ends at once or, where a frame is being written, as
/// soon as the file is whole.
/// @param descriptor the socket, which becomes this function's own.
/// Throws Error where no job comes from there; what fails later is told to that shell.
void runSequenceWorker(int descriptor);

} // namespace korl
