#pragma once

#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <utility>

namespace korl::test {

/// Compares a normalisation in double precision with one in extended precision, from the smallest denormal
/// numbers to the largest. x and y are to be divided by the length, z is to be multiplied by its reciprocal.
class NormalisationReference {
public:
    using Vector = Orvid::PhysicalSpace::vector;
    using Normalise = std::function<Orvid::FixedArray<double, 3>(const Vector&)>;

    explicit NormalisationReference(Normalise normalise) : my_normalise(std::move(normalise)) {}

    void expectAgreementEverywhere() const {
        std::mt19937_64 random(6);
        std::uniform_real_distribution<double> mantissa(-1, 1), exponent(-300, 300), near(-3, 3);
        for (int i = 0; i < 20000; ++i) {
            const double common = exponent(random);
            const auto component = [&] {
                return mantissa(random) * std::pow(10.0, common + near(random) - 3);
            };
            expectAgreement({component(), component(), component()});
        }
        expectAgreement({1e300, -1e-300, 1});
    }

    /// Vectors that are denormal as a whole: random ones, and every combination of chosen components, their
    /// lengths on both sides of the smallest one whose reciprocal is finite.
    void expectAgreementOfDenormals() const {
        std::mt19937_64 random(9);
        std::uniform_real_distribution<double> mantissa(-1, 1), exponent(-323, -307);
        for (int i = 0; i < 5000; ++i) {
            const double scale = std::pow(10.0, exponent(random));
            expectAgreement({mantissa(random) * scale, mantissa(random) * scale, mantissa(random) * scale});
        }
        constexpr double smallest = std::numeric_limits<double>::denorm_min();
        constexpr double chosen[] = {0,        smallest, -3 * smallest, 3e-310,  -5e-309,
                                     5.5e-309, 6e-309,   1e-308,        -1e-308, 2e-308};
        for (const double x : chosen)
            for (const double y : chosen)
                for (const double z : chosen)
                    expectAgreement({x, y, z});
    }

    /// Along the axes a component is 1 and the others stay what they are, zeros with their signs.
    void expectAxesToStay() const {
        for (const double length : {1.0, 5.0, 49.0, 0.1, 1e-300, 1e300})
            for (const double sign : {1.0, -1.0})
                for (const double zero : {0.0, -0.0}) {
                    const double along = sign * length, inverse = 1 / length; // 49 times it is below 1
                    expectBits({along, zero, zero}, sign, zero, zero);
                    expectBits({zero, along, zero}, zero, sign, zero);
                    expectBits({zero, zero, along}, zero, zero, along * inverse);
                }
    }

    /// Random vectors, and every combination of simple components: both signs, 1, and equal ones among them.
    void expectRoundingsOfTheFormula() const {
        std::mt19937_64 random(5);
        std::uniform_real_distribution<double> any(-1, 1);
        int differing = 0;
        for (int i = 0; i < 2000; ++i)
            differing += expectRoundings({any(random), any(random), any(random)});
        EXPECT_GT(differing, 20);
        constexpr double chosen[] = {0, 0.25, -0.5, 1, -1, 3, -7};
        for (const double x : chosen)
            for (const double y : chosen)
                for (const double z : chosen)
                    if (x != 0 || y != 0 || z != 0) {
                        expectAgreement({x, y, z});
                        expectRoundings({x, y, z});
                    }
    }

private:
    void expectBits(const Vector& v, double x, double y, double z) const {
        const auto found = my_normalise(v);
        const double expected[] = {x, y, z};
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(found[i], expected[i]) << v.x << " " << v.y << " " << v.z << ", component " << i;
            EXPECT_EQ(std::signbit(found[i]), std::signbit(expected[i]))
                << v.x << " " << v.y << " " << v.z << ", component " << i;
        }
    }

    /// x and y are divided by the length, z is multiplied by its reciprocal.
    /// @returns whether that makes a difference for both kinds.
    bool expectRoundings(const Vector& v) const {
        const double m = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
        const double qx = v.x / m, qy = v.y / m, qz = v.z / m;
        const double length = m * std::sqrt(qx * qx + qy * qy + qz * qz);
        expectBits(v, v.x / length, v.y / length, v.z * (1 / length));
        return v.z / length != v.z * (1 / length) && v.x / length != v.x * (1 / length) &&
               v.y / length != v.y * (1 / length);
    }

    void expectAgreement(const Vector& v) const {
        if (v.x == 0 && v.y == 0 && v.z == 0)
            return; // has no direction
        constexpr long double smallest = std::numeric_limits<double>::denorm_min();
        const long double x = v.x, y = v.y, z = v.z; // its range holds these squares without scaling
        const long double length = std::sqrt(x * x + y * y + z * z);
        // Each component carries the roundings of the quotients, the root, the product and the division; and
        // that of the length, which has few digits where it is denormal.
        const double tolerance = static_cast<double>(8e-16L + smallest / length);
        const auto found = my_normalise(v);
        const auto where = [&] {
            return testing::Message() << std::hexfloat << v.x << " " << v.y << " " << v.z;
        };
        ASSERT_NEAR(found[0], static_cast<double>(x / length), tolerance) << where();
        ASSERT_NEAR(found[1], static_cast<double>(y / length), tolerance) << where();

        // 1/length overflows up to a length of 2^-1024, and z with it.
        const long double overflow = std::ldexp(1.0L, -1024);
        if (length > overflow + smallest) {
            ASSERT_NEAR(found[2], static_cast<double>(z / length), tolerance) << where();
        } else if (length < overflow - smallest) {
            if (v.z == 0)
                ASSERT_TRUE(std::isnan(found[2])) << where();
            else
                ASSERT_EQ(found[2], std::copysign(std::numeric_limits<double>::infinity(), v.z)) << where();
        }
    }

    Normalise my_normalise;
};

} // namespace korl::test
