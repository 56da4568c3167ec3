#include "shell/catalogue/parameter_notes.hpp"

namespace korl {

namespace {

struct Row {
    std::string_view type, parameter;
    ParameterNote note;
};

constexpr Row rows[]{
    {"AmbientLight", "Color", {"", "colour of the light, the same everywhere"}},

    {"DirectionalLight", "Intensity", {"", "strength of the diffuse light"}},
    {"DirectionalLight", "Specular", {"", "strength of the highlights, which are white"}},
    {"DirectionalLight", "direction", {"", "the way in which the light travels"}},
    {"DirectionalLight", "color", {"", "colour of the diffuse light"}},

    {"DistanceLight", "Intensity", {"", "strength of the diffuse light"}},
    {"DistanceLight", "Specular", {"", "strength of the highlights"}},
    {"DistanceLight", "lightposition", {"scene units", "where the light stands"}},
    {"DistanceLight", "shineat", {"scene units", "the point that it shines at"}},
    {"DistanceLight", "color", {"", "colour of the light"}},

    {"Sun", "Intensity", {"", "strength of the diffuse light"}},
    {"Sun", "Specular", {"", "strength of the highlights"}},
    {"Sun", "latitude", {"degrees", "where on Earth the scene is, north positive"}},
    {"Sun", "timeofday", {"hours", "solar time on the day of an equinox: sunrise at 6"}},

    {"Torch", "intensity", {"", "strength of the diffuse light"}},
    {"Torch", "specular", {"", "strength of the highlights"}},
    {"Torch", "elevation", {"scene units", "how high it hangs above its location"}},
    {"Torch", "scaleDistance", {"scene units", "the distance at which half of its strength is left"}},
    {"Torch", "up", {"", "kept with the light, without effect on pictures"}},
    {"Torch", "location", {"scene units", "the point on the ground below it"}},

    {"Headlight", "intensity", {"", "strength of the diffuse light"}},
    {"Headlight", "specular", {"", "strength of the highlights"}},
    {"Headlight", "positionmv", {"scene units", "where the fixed-function light stands, seen from the eye"}},
};

} // namespace

ParameterNote noteOn(std::string_view type, std::string_view parameter) {
    for (const Row& row : rows)
        if (row.type == type && row.parameter == parameter)
            return row.note;
    return {};
}

} // namespace korl
