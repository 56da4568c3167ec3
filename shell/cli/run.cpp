#include "shell/cli/python.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fmt/core.h>
#include <unistd.h>

namespace korl::cli {

namespace {

/// The folder of the package korl, which lies in the same tree as this program.
std::filesystem::path packageFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / KORL_PYTHON_DIR;
}

/// Turns this process into Python, which finds the package korl first. Returns only by throwing Error.
[[noreturn]] void execPython(const std::vector<std::string>& arguments) {
    const std::filesystem::path package = packageFolder();
    if (!std::filesystem::is_directory(package / "korl"))
        throw Error(
            fmt::format("the Python package korl is not in {}; build or install it beside this program",
                        package.string()));
    const char* const former = std::getenv("PYTHONPATH");
    const std::string path = package.string() + (former && *former ? fmt::format(":{}", former) : "");
    ::setenv("PYTHONPATH", path.c_str(), 1);
    std::vector<char*> words;
    std::string program = KORL_PYTHON;
    words.push_back(program.data());
    std::vector<std::string> kept = arguments;
    for (std::string& argument : kept)
        words.push_back(argument.data());
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    throw Error(fmt::format("cannot start Python, {}: {}; install python3", program, std::strerror(errno)));
}

/// Scripts make their shells themselves.
void requireNoShellOptions(const Program& program) {
    if (!program.plugins.empty() || program.verbosity != 0)
        throw UsageError("--plugin and --verbose do not reach Python; use korl.Shell(plugins=[...]) and "
                         "korl.set_verbosity(...) there");
}

} // namespace

void addRunCommand(CLI::App& app, Program& program) {
    CLI::App* const command =
        app.add_subcommand("run", "Run a Python script with the module korl: run SCRIPT.py [ARGUMENT...]");
    command->fallthrough(false)->prefix_command(); // all from the script on is the script's
    command->callback([&program, command] {
        program.command = [&program, arguments = command->remaining()] {
            requireNoShellOptions(program);
            if (arguments.empty())
                throw UsageError("run takes the file of a Python script, and then the script's arguments");
            if (!std::filesystem::exists(arguments.front()))
                throw Error(
                    fmt::format("cannot run {}: there is no such file; check the path", arguments.front()));
            execPython(arguments);
        };
    });
}

bool isOnTerminal() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1;
}

void openPrompt(const Program& program) {
    requireNoShellOptions(program);
    execPython({"-i", "-q", "-c",
                "import korl; shell = korl.Shell(); "
                "print('korl " KORL_VERSION ": Python with a shell ready, as `shell`; "
                "help(korl) tells more, Ctrl-D ends.')"});
}

} // namespace korl::cli
