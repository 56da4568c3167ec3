#pragma once

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

    void once(const std::string& report) {
        if (my_told.insert(report).second && my_sink)
            my_sink(report);
    }

private:
    Sink my_sink;
    std::set<std::string> my_told;
};

} // namespace korl
