#pragma once

#include "shell/base/error.hpp"
#include "shell/session/shell.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korl::cli {

/// The command line cannot be understood: a word has the wrong form, or words don't go together.
class UsageError : public Error {
public:
    using Error::Error;
};

/// What the command line asks for: the options that every command has, and the command itself.
struct Program {
    std::vector<std::filesystem::path> plugins;
    int verbosity = 0;
    std::function<void()> command;
};

/// Runs a command's work with a shell that has the modules that the options name and those on the search
/// path, and tells its reports as notes. What a module throws is turned into an Error while the module is
/// still there: an exception of its own cannot be looked at once it is unloaded. From here on standard output
/// is for the command's answer alone: what modules, drivers and traces write there goes to standard error.
void withShell(const Program& program, const std::function<void(Shell&)>& work);

/// Tells the user something on standard error, under the program's name.
void note(const std::string& text);

/// Writes to standard output, which is complete with `finishAnswer`.
void print(std::string_view text);

/// Writes what was printed and not yet written. Throws Error where standard output does not take all of it.
void finishAnswer();

/// Prints rows of cells, each column as wide as its widest cell. The first row is the head.
void printTable(std::vector<std::vector<std::string>> rows);

/// Each adds a command of its name; the command's work is put into `program.command` when it is chosen.
void addTypesCommand(CLI::App& app, Program& program);
void addDescribeCommand(CLI::App& app, Program& program);
void addAcceptsCommand(CLI::App& app, Program& program);
void addRenderCommand(CLI::App& app, Program& program);
void addShaderCommand(CLI::App& app, Program& program);
void addSaveCommand(CLI::App& app, Program& program);
void addSaveRigCommand(CLI::App& app, Program& program);
void addLoadRigCommand(CLI::App& app, Program& program);
void addScriptCommand(CLI::App& app, Program& program);
void addExplainCommand(CLI::App& app, Program& program);
void addGalleryCommand(CLI::App& app, Program& program);
void addRunCommand(CLI::App& app, Program& program);
void addAnimateCommand(CLI::App& app, Program& program);
void addSequenceWorkerCommand(CLI::App& app, Program& program);

} // namespace korl::cli
