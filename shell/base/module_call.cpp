#include "shell/base/module_call.hpp"

#include "shell/base/caught_exception.hpp"
#include "shell/base/loaded_modules.hpp"
#include "shell/base/printable.hpp"

#include <array>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fmt/core.h>
#include <new>
#include <string_view>
#include <unistd.h>

namespace korl {

template <class Take>
void ModuleCall::describe(Take take) const {
    take(my_operation);
    if (my_is_of_object) {
        take(" of \"");
        take(std::string_view(my_object.data(), my_object_size));
        take("\"");
    }
    const std::string_view module = my_module ? std::string_view(*my_module) : moduleAt(my_type);
    if (!module.empty()) {
        take(" in the module \"");
        take(module);
        take("\"");
    }
}

namespace {

/// The innermost call of each thread.
constinit thread_local const ModuleCall* running = nullptr;

/// A line for standard error, put together without memory of the heap or anything else that a signal handler
/// may not touch. What is not ASCII cannot be told from what a terminal would obey here, and is replaced.
class LastWords {
public:
    void add(std::string_view text) noexcept {
        for (const char letter : text)
            if (my_size < my_text.size() - 1) // leaves a byte for the end of the line
                my_text[my_size++] = letter >= ' ' && letter <= '~' ? letter : '?';
    }

    void add(int number) noexcept {
        std::array<char, 12> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        add(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
    }

    void write() noexcept {
        my_text[my_size++] = '\n';
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, my_text.data(), my_size);
    }

private:
    std::array<char, 1024> my_text{};
    std::size_t my_size = 0;
};

/// What is said of the call in which the process ends.
LastWords beginLastWords() noexcept {
    LastWords words;
    words.add("korl: ");
    constexpr std::size_t max_length = 200; // of a text, so that there is space for what became of it
    running->describe([&](std::string_view text) { words.add(text.substr(0, max_length)); });
    return words;
}

void onExit() {
    if (!running)
        return;
    LastWords words = beginLastWords();
    words.add(" called exit; the program ends with its work undone");
    words.write();
    ::_exit(1);
}

void onSignal(int signal) {
    if (running) {
        LastWords words = beginLastWords();
        words.add(" ended with signal ");
        words.add(signal);
        if (const char* const description = ::sigdescr_np(signal)) {
            words.add(" (");
            words.add(description);
            words.add(")");
        }
        words.add("; report it to the author of the module");
        words.write();
    }
    std::raise(signal); // which has no handler any more, and comes when this one returns
}

} // namespace

// Of the copy of the object's name only what is used is written: calls are frequent.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
ModuleCall::ModuleCall(const std::type_info* type, const std::string* object, const std::string* module,
                       const char* operation) noexcept
    : my_type(type), my_is_of_object(object != nullptr),
      my_object_size(object ? object->copy(my_object.data(), my_object.size()) : 0), my_module(module),
      my_operation(operation), my_outer(running) {
    running = this;
}

ModuleCall::~ModuleCall() {
    running = my_outer;
}

void ModuleCall::failed() const {
    std::string text;
    describe([&](std::string_view part) { text += printable(part); });
    try {
        throw;
    } catch (const std::bad_alloc&) {
        throw Error(fmt::format("{} failed: {}", text, textOfCaughtException()));
    } catch (...) {
        throw Error(
            fmt::format("{} threw {}; report it to the author of the module", text, nameOfCaughtException()));
    }
}

void reportExitsOfModules() {
    [[maybe_unused]] static const int registered = std::atexit(onExit);
}

void reportSignalsOfModules() {
    moduleAt(nullptr); // which gets its memory at its first use
    struct sigaction former {};
    // A full stack has no space for a handler either.
    if (::sigaction(SIGSEGV, nullptr, &former) == 0 && former.sa_handler == SIG_DFL) {
        static std::array<char, std::size_t{64} * 1024> memory;
        const stack_t stack{memory.data(), 0, memory.size()};
        ::sigaltstack(&stack, nullptr);
    }
    struct sigaction reporting {};
    reporting.sa_handler = onSignal;
    reporting.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK);
    for (const int signal : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP})
        if (::sigaction(signal, nullptr, &former) == 0 && former.sa_handler == SIG_DFL)
            ::sigaction(signal, &reporting, nullptr);
}

} // namespace korl
