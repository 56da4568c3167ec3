#include <shell/plugins/plugin_trial.hpp>

#include <shell/base/child_process.hpp>
#include <shell/base/descriptor.hpp>
#include <shell/base/own_programs.hpp>
#include <shell/base/printable.hpp>
#include <shell/plugins/plugin_error.hpp>

#include <cerrno>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/mman.h>
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

/// What a program writes, in a file in memory, so that nobody has to wait and read.
class WrittenText {
public:
    WrittenText() : my_descriptor(::memfd_create("korl-try-module", MFD_CLOEXEC)) {
        if (my_descriptor.get() < 0)
            throw Error(std::string("cannot make a file in memory: ") + std::strerror(errno));
    }

    int descriptor() const noexcept { return my_descriptor.get(); }

    /// What was written, or the beginning of a very long text.
    std::string text() const {
        std::string text(64 * 1024, '\0');
        const ssize_t count = ::pread(my_descriptor.get(), text.data(), text.size(), 0);
        text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        return text;
    }

private:
    Descriptor my_descriptor;
};

/// The last line that is not empty, as what a program said when it failed.
std::string lastLineOf(std::string_view text) {
    constexpr std::size_t longest = 200;
    const std::size_t end = text.find_last_not_of("\n\r ");
    if (end == std::string_view::npos)
        return {};
    text = text.substr(0, end + 1);
    const std::size_t begin = text.find_last_of('\n') + 1; // of the whole text where there is none
    return printable(text.substr(begin, longest));
}

std::string textOf(std::chrono::milliseconds time) {
    return time.count() % 1000 == 0 ? std::to_string(time.count() / 1000) + " s"
                                    : std::to_string(time.count()) + " ms";
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

} // namespace

void tryPlugin(const PluginInspection& plugin, std::chrono::milliseconds limit) {
    static std::set<Identity> passed; // modules are not loaded from two threads at once
    const Identity identity = identityOf(plugin.file);
    if (passed.contains(identity))
        return;

    const WrittenText told, output;
    ProcessStart start{ownProgram("korl-try-module"),
                       {plugin.file.string(), plugin.entry_point, std::to_string(::getpid())}};
    start.shared = told.descriptor();
    start.output = output.descriptor();
    ChildProcess process(start);
    const std::optional<int> end = process.waitFor(limit);
    if (!end)
        process.kill();
    const Answer answer(told.text());
    if (end && answer.hasPassed()) {
        passed.insert(identity);
        return;
    }
    if (const auto refusal = answer.textBehind(trial_words::refused))
        throw Error(*refusal);

    std::string found;
    if (!end) {
        found = "one that is busy for more than " + textOf(limit);
    } else if (const auto thrown = answer.textBehind(trial_words::threw)) {
        found = "one that throws " + *thrown;
    } else {
        const std::string said = lastLineOf(output.text());
        found = "one that ends the process with " + endText(*end) +
                (said.empty() ? "" : ", saying \"" + said + "\",");
    }
    throw pluginError(plugin.file, "a module that can be loaded and unloaded",
                      found + " while it is " + answer.step(),
                      "Mend the plug-in; if it was in order before, build it or copy it again.");
}

} // namespace korl
