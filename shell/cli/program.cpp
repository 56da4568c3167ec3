#include "shell/cli/program.hpp"

#include "shell/plugins/plugin_search_path.hpp"

#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <cstdio>

namespace korl::cli {

void withShell(const Program& program, const std::function<void(Shell&)>& work) {
    Qelt::setVerbosity(program.verbosity);
    Shell shell(note);
    shell.load(program.plugins, pluginSearchPath());
    try {
        work(shell);
    } catch (const Error&) {
        throw; // the shell's own
    } catch (const std::exception& error) {
        throw Error(error.what());
    } catch (...) {
        throw Error("a module threw something that is no exception; it has to be mended by its maker");
    }
}

void note(const std::string& text) {
    std::fprintf(stderr, "korl: %s\n", text.c_str());
}

void printTable(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool last = i + 1 == row.size();
            line += row[i] + (last ? "" : std::string(widths[i] - row[i].size() + 2, ' '));
        }
        std::printf("%s\n", line.c_str());
    }
}

} // namespace korl::cli
