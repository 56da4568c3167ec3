#pragma once

#include <array>
#include <cstddef>

namespace Orvid {

/// `N` components of type `T`, stored one behind the other. An aggregate: `FixedArray<float, 4>{r, g, b, a}`.
template <class T, std::size_t N>
struct FixedArray {
    std::array<T, N> components{};

    constexpr T& operator[](std::size_t index) { return components[index]; }
    constexpr const T& operator[](std::size_t index) const { return components[index]; }
    constexpr const T* data() const { return components.data(); }
    static constexpr std::size_t size() { return N; }

    friend constexpr bool operator==(const FixedArray&, const FixedArray&) = default;
};

} // namespace Orvid
