#pragma once

#include "tests/support/run_program.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace korl::test {

/// Runs korl animate on small pictures that go to a folder of the test's own.
class Animating : public testing::Test {
protected:
    using Words = std::vector<std::string>;

    Words words(const Words& arguments, const std::string& output) const {
        Words all{"animate", "--size", size, "--no-default-light", "-o", folder / output};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }

    ProgramResult animate(const Words& arguments, const std::string& output = "f_##.png") const {
        return runProgram(KORL_PROGRAM, words(arguments, output), environment);
    }

    /// The same, which goes on beside the test.
    /// @param errors a descriptor for its standard error; -1 for the test's own.
    pid_t start(const Words& arguments, const std::string& output = "f_##.png", int errors = -1) const {
        Words all = words(arguments, output);
        std::vector<char*> pointers{const_cast<char*>(KORL_PROGRAM)};
        for (std::string& word : all)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        const pid_t child = ::fork();
        if (child == 0) {
            ::unsetenv("KORL_PLUGIN_PATH");
            for (const auto& [name, value] : environment)
                ::setenv(name.c_str(), value.c_str(), 1);
            if (errors >= 0)
                ::dup2(errors, STDERR_FILENO);
            ::execv(KORL_PROGRAM, pointers.data());
            ::_exit(127);
        }
        return child;
    }

    /// The same, sent a signal as soon as a file is there. @returns what `waitpid` tells of its end.
    int animateUntil(const std::string& file, int signal, const Words& arguments) const {
        const pid_t child = start(arguments);
        waitUntil([&] { return std::filesystem::exists(folder / file); });
        ::kill(child, signal);
        int status = 0;
        ::waitpid(child, &status, 0);
        return status;
    }

    /// Waits until something holds, but not for ever. @returns whether it does.
    static bool waitUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return condition();
    }

    /// Whether a process has ended, waited for or not.
    static bool hasEnded(pid_t process) {
        std::ifstream stream("/proc/" + std::to_string(process) + "/stat");
        std::string text;
        std::getline(stream, text);
        const std::size_t bracket = text.rfind(')');
        return bracket == std::string::npos || text[bracket + 2] == 'Z';
    }

    /// The names of the files in the test's folder, hidden ones too, in order.
    Words files(const std::string& inside = "") const {
        Words names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path() / inside))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string bytes(const std::string& name) const { return bytesOf(folder / name); }

    const TemporaryFolder folder;
    std::string size = "24x16";
    std::vector<std::pair<std::string, std::string>> environment;
    const Words sun{"--light", "Sun:sun", "--set", "sun.latitude=52"};
    const Words moody{"--plugin", KORL_BROKEN_PLUGINS "/failing_frames.so", "--light", "Moody:m"};

    static Words joined(Words first, const Words& second) {
        first.insert(first.end(), second.begin(), second.end());
        return first;
    }
};

} // namespace korl::test
