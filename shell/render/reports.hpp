#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>

namespace korl {

/// Tells the user what he would otherwise wonder about, each thing once, however many frames it lasts.
class Reports {
public:
    using Sink = std::function<void(const std::string&)>;

    /// @param sink takes each report as it comes, without a line break at its end.
    explicit Reports(Sink sink) : my_sink(std::move(sink)) {}

    /// Tells something of an object unless the same kind of thing was told of it before.
    /// @param object the object's number, which no other one has.
    /// @param kind what it is about; a literal, one for each place that reports.
    /// @param text makes the report; called only when it is told.
    template <class Text>
    void once(std::uint64_t object, const char* kind, Text text) {
        if (isFirst(object, kind) && my_sink)
            my_sink(text());
    }

    /// Whether this kind of thing was not told of the object before; from now on it counts as told.
    bool isFirst(std::uint64_t object, const char* kind) { return my_told.insert({object, kind}).second; }

    /// Whether this kind of thing was told of the object.
    bool wasTold(std::uint64_t object, const char* kind) const { return my_told.contains({object, kind}); }

    /// Tells something that is of no single object. The caller sees to it that it is told once.
    void warn(const std::string& report) {
        if (my_sink)
            my_sink(report);
    }

private:
    Sink my_sink;
    std::set<std::pair<std::uint64_t, const char*>> my_told;
};

} // namespace korl
