#include <sorvik/saveable.hpp>

namespace Qelt {

VSaveable::VSaveable() = default;
VSaveable::~VSaveable() = default;

} // namespace Qelt
