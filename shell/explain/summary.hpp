#pragma once

#include "shell/explain/explanation.hpp"

namespace korl {

/// Fills in the causes of the darkness, the main one first, and the summary, from all else that was found.
void summarize(Explanation& explanation);

} // namespace korl
