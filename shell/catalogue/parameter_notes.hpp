#pragma once

#include <string>
#include <string_view>

namespace korl {

/// What a parameter means to users, where its type doesn't say it itself. Both may be empty.
struct ParameterNote {
    std::string_view unit; ///< such as "degrees"
    std::string_view description;
};

/// The note on a parameter of a type of the program's own module; an empty one for any other.
ParameterNote noteOn(std::string_view type, std::string_view parameter);

} // namespace korl
