#pragma once

#include <sorvik/export.hpp>

#include <string>

namespace Qelt {

/// The text form of values of type `T`, used when parameters are saved, loaded or printed. Specialised for
/// each value type with `Text(value)` and `setValueFromText(value, text)`; the latter refuses a malformed
/// text by returning false and leaves the value as it was.
template <class T>
struct VValueTrait;

template <>
struct SORVIK_EXPORT VValueTrait<double> {
    static std::string Text(double value);
    static bool setValueFromText(double& value, const std::string& text);
};

/// A text is its own text form.
template <>
struct VValueTrait<std::string> {
    static std::string Text(const std::string& value) { return value; }
    static bool setValueFromText(std::string& value, const std::string& text) {
        value = text;
        return true;
    }
};

} // namespace Qelt
