#include "shell/cli/program.hpp"

#include <cstdio>
#include <exception>

namespace {

enum ExitCode { done = 0, failed = 1, wrong_usage = 2 };

} // namespace

int main(int argument_count, char** arguments) {
    using namespace korl::cli;

    CLI::App app("Lights scenes and renders them with OpenGL.", "korl");
    app.set_version_flag("--version", "korl " KORL_VERSION);
    app.require_subcommand(0, 1);
    app.fallthrough(); // the options below may also stand behind the command

    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "korl: " + std::string(error.what()) + "\nRun with --help for more information.\n";
    });

    Program program;
    app.add_option("--plugin", program.plugins, "Load a module, before those on KORL_PLUGIN_PATH")
        ->allow_extra_args(false);
    app.add_option("--verbose", program.verbosity,
                   "Show diagnostics up to this level: 1 the renderer, 50 parameters, "
                   "100 creators");
    addTypesCommand(app, program);
    addDescribeCommand(app, program);
    addRenderCommand(app, program);
    addShaderCommand(app, program);

    try {
        app.parse(argument_count, arguments);
        if (!program.command)
            throw UsageError("no command was given; there are types, describe, render and shader");
        program.command();
        if (std::fflush(stdout) != 0)
            throw korl::Error("cannot write to standard output; is the disk full?");
        return done;
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? done : wrong_usage;
    } catch (const UsageError& error) {
        note(std::string(error.what()) + "\nRun with --help for more information.");
        return wrong_usage;
    } catch (const std::exception& error) {
        note(error.what());
        return failed;
    }
}
