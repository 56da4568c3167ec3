#pragma once

#include <array>
#include <cstddef>

namespace Orvid {

/// A square matrix of `N` rows and columns, stored column by column as OpenGL takes it.
template <std::size_t N, class T>
struct Quadratic {
    std::array<T, N * N> components{};

    constexpr T& operator()(std::size_t row, std::size_t column) { return components[column * N + row]; }
    constexpr const T& operator()(std::size_t row, std::size_t column) const {
        return components[column * N + row];
    }
    constexpr const T* data() const { return components.data(); }

    friend constexpr bool operator==(const Quadratic&, const Quadratic&) = default;
};

} // namespace Orvid
