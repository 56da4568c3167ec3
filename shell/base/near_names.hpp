#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korl {

/// What to say about a name that is not among the known ones: a guess at what was meant, where one is near,
/// and the names that there are, such as: did you mean "Torch"? There are: Sun, Torch.
/// @param none what to say instead if there are no names at all.
std::string nearNames(std::string_view asked, const std::vector<std::string>& known, std::string_view none);

/// How many letters must be changed, added or left out, or swapped with their neighbour, to get from one word
/// to the other; upper and lower case count as the same (optimal string alignment distance).
std::size_t editDistance(std::string_view from, std::string_view to);

} // namespace korl
