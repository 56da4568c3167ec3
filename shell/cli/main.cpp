#include "shell/base/printable.hpp"
#include "shell/cli/program.hpp"
#include "shell/cli/python.hpp"

#include "shell/base/caught_exception.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/near_names.hpp"
#include "shell/base/standard_streams.hpp"

#include <algorithm>
#include <csignal>
#include <fmt/core.h>

namespace {

enum ExitCode : int { done = 0, failed = 1, wrong_usage = 2 };

std::vector<std::string> commandsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands({}))
        if (!command->get_group().empty()) // one that the program alone starts
            names.push_back(command->get_name());
    return names;
}

/// What is wrong with the command line. A word in the place of the command gets a guess at what was meant.
std::string problemOf(const CLI::App& app, const CLI::Error& error) {
    const std::vector<std::string> not_understood = app.remaining();
    const auto word = std::find_if(not_understood.begin(), not_understood.end(),
                                   [](const std::string& left) { return !left.starts_with('-'); });
    if (!app.get_subcommands().empty() || word == not_understood.end())
        return error.what();
    return fmt::format("unknown command {}: {}", korl::inQuotes(*word),
                       korl::nearNames(*word, commandsOf(app), ""));
}

/// The names of the commands, as a sentence lists them.
std::string sentenceOf(const std::vector<std::string>& names) {
    std::string listed;
    for (std::size_t i = 0; i < names.size(); ++i)
        listed += (i == 0 ? "" : i + 1 < names.size() ? ", " : " and ") + names[i];
    return listed;
}

} // namespace

// What may be thrown outside the try block below is that memory ran out: that ends the program.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argument_count, char** arguments) {
    using namespace korl::cli;

    korl::openStandardStreams();
    // A reader that goes away and a file that may not grow are errors like any other, with their message.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL); // ignored, as a parent may leave it, it would hide how child processes end
    korl::reportSignalsOfModules();
    CLI::App app("Lights scenes and renders them with OpenGL.", "korl");
    app.set_version_flag("--version", "korl " KORL_VERSION);
    app.require_subcommand(0, 1);
    app.fallthrough(); // the options below may also stand behind the command

    app.failure_message([](const CLI::App* parsed, const CLI::Error& error) {
        return fmt::format("korl: {}\nRun with --help for more information.\n", problemOf(*parsed, error));
    });

    Program program;
    app.add_option("--plugin", program.plugins, "Load a module, before those on KORL_PLUGIN_PATH")
        ->allow_extra_args(false);
    app.add_option("--verbose", program.verbosity,
                   "Show diagnostics up to this level: 1 the renderer, 50 parameters, "
                   "100 creators");
    addTypesCommand(app, program);
    addDescribeCommand(app, program);
    addAcceptsCommand(app, program);
    addRenderCommand(app, program);
    addShaderCommand(app, program);
    addSaveCommand(app, program);
    addSaveRigCommand(app, program);
    addLoadRigCommand(app, program);
    addScriptCommand(app, program);
    addExplainCommand(app, program);
    addGalleryCommand(app, program);
    addRunCommand(app, program);
    addAnimateCommand(app, program);
    addSequenceWorkerCommand(app, program);

    try {
        app.parse(argument_count, arguments);
        if (!program.command && isOnTerminal())
            openPrompt(program);
        if (!program.command)
            throw UsageError("no command was given; there are " + sentenceOf(commandsOf(app)));
        program.command();
        finishAnswer();
        return done;
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? done : wrong_usage;
    } catch (const UsageError& error) {
        note(fmt::format("{}\nRun with --help for more information.", error.what()));
        return wrong_usage;
    } catch (...) {
        note(korl::textOfCaughtException());
        return failed;
    }
}
