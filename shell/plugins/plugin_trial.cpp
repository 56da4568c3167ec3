#include "shell/plugins/plugin_trial.hpp"

#include "shell/base/child_process.hpp"
#include "shell/base/own_programs.hpp"
#include "shell/base/written_text.hpp"
#include "shell/plugins/plugin_error.hpp"

#include <fmt/core.h>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace korl {

namespace {

/// Tells a file's content from any other without reading it: device, inode, size, time of its last change.
using Identity = std::tuple<dev_t, ino_t, off_t, time_t, long>;

Identity identityOf(const std::filesystem::path& file) {
    struct stat status {};
    ::stat(file.c_str(), &status); // of a file that has just gone nothing passes
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::string textOf(std::chrono::milliseconds time) {
    return time.count() % 1000 == 0 ? fmt::format("{} s", time.count() / 1000)
                                    : fmt::format("{} ms", time.count());
}

/// What the trial has told before it ended.
class Answer {
public:
    explicit Answer(const std::string& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += my_last.size() + 1) {
            my_last = bytes.c_str() + at;
            my_is_unloading = my_is_unloading || my_last == trial_words::unloading;
        }
    }

    bool hasPassed() const { return my_last == trial_words::passed; }

    /// What follows a word that has more behind it; nothing where the last word is another one.
    std::optional<std::string> textBehind(std::string_view word) const {
        return my_last.starts_with(word) ? std::optional(my_last.substr(word.size())) : std::nullopt;
    }

    std::string step() const { return my_is_unloading ? "unloaded" : "loaded"; }

private:
    std::string my_last;
    bool my_is_unloading = false;
};

/// Tries a module once. @param heap what its process's heap is to be like, one of `trial_heaps`.
void tryWith(const char* heap, const PluginInspection& plugin, std::chrono::milliseconds limit) {
    const WrittenText messages, output;
    ProcessStart start{ownProgram("korl-try-module"),
                       {plugin.file.string(), plugin.entry_point, heap, std::to_string(::getpid())}};
    start.shared = messages.descriptor();
    start.output = output.descriptor();
    ChildProcess process(start);
    const std::optional<int> end = process.waitFor(limit);
    if (!end)
        process.kill();
    const Answer answer(messages.beginning());
    if (end && answer.hasPassed())
        return;
    if (const auto refusal = answer.textBehind(trial_words::refused))
        throw Error(*refusal);

    std::string found;
    if (!end) {
        found = "one that is busy for more than " + textOf(limit);
    } else if (const auto thrown = answer.textBehind(trial_words::threw)) {
        found = "one that throws " + *thrown;
    } else {
        const std::string said = output.lastLines(1);
        found = fmt::format("one that ends the process with {}{}", endText(*end),
                            said.empty() ? "" : fmt::format(", saying \"{}\",", said));
    }
    throw pluginError(plugin.file, "a module that can be loaded and unloaded",
                      fmt::format("{} while it is {}", found, answer.step()),
                      "Fix the plug-in; if it worked before, build it or copy it again.");
}

} // namespace

void tryPlugin(const PluginInspection& plugin, std::chrono::milliseconds limit) {
    static std::set<Identity> passed; // modules are not loaded from two threads at once
    const Identity identity = identityOf(plugin.file);
    if (passed.contains(identity))
        return;
    for (const char* const heap : trial_heaps)
        tryWith(heap, plugin, limit);
    passed.insert(identity);
}

} // namespace korl
