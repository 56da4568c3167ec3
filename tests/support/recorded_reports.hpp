#pragma once

#include <tessan/speak_ptr.hpp>

#include <string>
#include <vector>

namespace korl::test {

/// Records the pointer diagnostics instead of having them printed, as long as it lives.
class RecordedReports : public Tessan::SpeakPtr {
public:
    RecordedReports() : my_former(replaceSpeaker(this)) {}
    ~RecordedReports() override { replaceSpeaker(my_former); }

    void printRS(const std::string& message, const char* place) override {
        places.emplace_back(place);
        messages.push_back(message);
    }

    std::vector<std::string> places;
    std::vector<std::string> messages;

private:
    SpeakPtr* my_former;
};

} // namespace korl::test
