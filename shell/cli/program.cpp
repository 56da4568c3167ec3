#include "shell/cli/program.hpp"

#include "shell/base/caught_exception.hpp"
#include "shell/base/printable.hpp"
#include "shell/plugins/plugin_search_path.hpp"

#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace korl::cli {

namespace {

std::FILE* answer = stdout; ///< where the command's answer goes

void setStandardOutputAside() {
    constexpr int first_descriptor = 3; // the lower ones are the standard streams
    const int kept = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, first_descriptor);
    answer = kept < 0 ? nullptr : ::fdopen(kept, "w");
    if (!answer || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
        throw Error(std::string("cannot set standard output aside for the answer: ") + std::strerror(errno));
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // so that what others write there stands in its place
}

Error cannotWrite() {
    return Error(std::string("cannot write to standard output: ") + std::strerror(errno));
}

} // namespace

void withShell(const Program& program, const std::function<void(Shell&)>& work) {
    setStandardOutputAside();
    Qelt::setVerbosity(program.verbosity);
    Shell shell(note);
    shell.load(program.plugins, pluginSearchPath());
    try {
        work(shell);
    } catch (const Error&) {
        throw; // the shell's own
    } catch (...) {
        throw Error(textOfCaughtException());
    }
}

void note(const std::string& text) {
    std::fprintf(stderr, "korl: %s\n", printableLines(text).c_str());
}

void printTable(std::vector<std::vector<std::string>> rows) {
    std::vector<std::size_t> widths;
    for (auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = printable(row[i]);
            widths[i] = std::max(widths[i], row[i].size());
        }
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool last = i + 1 == row.size();
            line += row[i] + (last ? "" : std::string(widths[i] - row[i].size() + 2, ' '));
        }
        print(line + "\n");
    }
}

void print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), answer) != text.size())
        throw cannotWrite();
}

void finishAnswer() {
    if (std::fflush(answer) != 0)
        throw cannotWrite();
}

} // namespace korl::cli
