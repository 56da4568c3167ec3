#include "shell/render/uniform_values.hpp"

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <fmt/format.h>
#include <span>
#include <type_traits>
#include <variant>
#include <vector>

namespace korl {

namespace {

using Orvid::FixedArray;
using Orvid::PhysicalSpace;
using Orvid::Quadratic;
using Qelt::RenderNamespace::UniformValue;
using FloatPoint = Orvid::Coordinates<Orvid::Cartesian3D, float>::point;

/// The numbers that a value is made of, in order, shown to `visit` as a span; for a sequence those of all
/// elements.
template <class Visit>
auto withComponents(const UniformValue& value, Visit visit) {
    return std::visit(
        [&]<class T>(const T& held) {
            if constexpr (std::is_arithmetic_v<T>) {
                return visit(std::span<const T>(&held, 1));
            } else if constexpr (requires { held.begin(); }) {
                std::vector<float> flat;
                for (const auto& element : held)
                    if constexpr (requires { element.x; })
                        flat.insert(flat.end(), {element.x, element.y, element.z});
                    else
                        flat.insert(flat.end(), element.components.begin(), element.components.end());
                return visit(std::span<const float>(flat));
            } else if constexpr (requires { held.x; }) {
                const std::array components{held.x, held.y, held.z};
                return visit(std::span(components));
            } else {
                return visit(std::span(held.components));
            }
        },
        value);
}

/// What the alternatives are in terms of floats, for those that are one to four real numbers.
template <class T>
std::optional<UniformFloats> readFloats(const T& value) {
    if constexpr (std::is_floating_point_v<T>)
        return UniformFloats{1, {static_cast<float>(value)}};
    else if constexpr (requires { value.x; })
        return UniformFloats{
            3, {static_cast<float>(value.x), static_cast<float>(value.y), static_cast<float>(value.z)}};
    else
        return {};
}

template <class Number, std::size_t N>
requires std::is_floating_point_v<Number> std::optional<UniformFloats>
readFloats(const FixedArray<Number, N>& value) {
    UniformFloats floats{static_cast<int>(N), {}};
    for (std::size_t i = 0; i < N; ++i)
        floats.values[i] = static_cast<float>(value[i]);
    return floats;
}

/// Calls the OpenGL entry points for one value, by the type that it is held as.
struct Uploader {
    GLint location;

    void operator()(int value) const { glUniform1i(location, value); }
    void operator()(unsigned int value) const { glUniform1ui(location, value); }
    void operator()(float value) const { glUniform1f(location, value); }
    void operator()(double value) const { glUniform1f(location, static_cast<float>(value)); }
    void operator()(const FixedArray<int, 2>& value) const { glUniform2iv(location, 1, value.data()); }
    void operator()(const FixedArray<int, 3>& value) const { glUniform3iv(location, 1, value.data()); }
    void operator()(const FixedArray<int, 4>& value) const { glUniform4iv(location, 1, value.data()); }
    void operator()(const FixedArray<float, 2>& value) const { glUniform2fv(location, 1, value.data()); }
    void operator()(const FixedArray<float, 3>& value) const { glUniform3fv(location, 1, value.data()); }
    void operator()(const FixedArray<float, 4>& value) const { glUniform4fv(location, 1, value.data()); }
    template <std::size_t N>
    void operator()(const FixedArray<double, N>& value) const {
        FixedArray<float, N> rounded;
        for (std::size_t i = 0; i < N; ++i)
            rounded[i] = static_cast<float>(value[i]);
        (*this)(rounded);
    }
    void operator()(const FloatPoint& value) const { glUniform3f(location, value.x, value.y, value.z); }
    void operator()(const PhysicalSpace::point& value) const {
        (*this)(FixedArray<double, 3>{value.x, value.y, value.z});
    }
    void operator()(const Quadratic<2, float>& value) const {
        glUniformMatrix2fv(location, 1, GL_FALSE, value.data());
    }
    void operator()(const Quadratic<3, float>& value) const {
        glUniformMatrix3fv(location, 1, GL_FALSE, value.data());
    }
    void operator()(const Quadratic<4, float>& value) const {
        glUniformMatrix4fv(location, 1, GL_FALSE, value.data());
    }
    template <class Element>
    void operator()(const std::vector<Element>& value) const {
        static_assert(sizeof(Element) == 3 * sizeof(float), "a sequence holds its numbers without gaps");
        if (!value.empty())
            glUniform3fv(location, static_cast<GLsizei>(value.size()),
                         reinterpret_cast<const GLfloat*>(value.data()));
    }
};

} // namespace

bool sameBits(const UniformValue& a, const UniformValue& b) {
    if (a.index() != b.index())
        return false;
    return std::visit(
        [&]<class T>(const T& held) {
            const T& other = std::get<T>(b);
            if constexpr (requires { held.begin(); })
                return held.size() == other.size() &&
                       (held.empty() ||
                        std::memcmp(held.data(), other.data(), held.size() * sizeof(held.front())) == 0);
            else
                return std::memcmp(&held, &other, sizeof(T)) == 0;
        },
        a);
}

std::optional<UniformFloats> floatsOf(const UniformValue& value) {
    return std::visit([](const auto& held) { return readFloats(held); }, value);
}

void uploadFloats(GLint location, const UniformFloats& floats) {
    switch (floats.size) {
    case 1:
        return glUniform1fv(location, 1, floats.values.data());
    case 2:
        return glUniform2fv(location, 1, floats.values.data());
    case 3:
        return glUniform3fv(location, 1, floats.values.data());
    default:
        return glUniform4fv(location, 1, floats.values.data());
    }
}

bool isFinite(const UniformValue& value) {
    return withComponents(value, []<class T, std::size_t N>(std::span<const T, N> components) {
        return std::all_of(components.begin(), components.end(),
                           [](T component) { return std::isfinite(static_cast<float>(component)); });
    });
}

void uploadUniform(GLint location, const UniformValue& value) {
    std::visit(Uploader{location}, value);
}

std::string uniformText(const UniformValue& value) {
    return withComponents(value, []<class T, std::size_t N>(std::span<const T, N> components) {
        if constexpr (std::is_floating_point_v<T>)
            return Qelt::componentsToText(std::span<const T>(components));
        else
            return fmt::format("{}", fmt::join(components, " "));
    });
}

} // namespace korl
