#include "tests/support/run_program.hpp"

#include <fcntl.h>
#include <stdexcept>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korl::test {

ProgramResult runProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment) {
    const TemporaryFolder folder;
    const std::string output = folder / "output", errors = folder / "errors";
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);

    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("cannot start a process");
    if (child == 0) {
        // The module under test, whatever the caller's shell has.
        if (const char* const module = getenv("KORL_TEST_MODULE_FOLDER"))
            setenv("KORL_PLUGIN_PATH", module, 1);
        else
            unsetenv("KORL_PLUGIN_PATH");
        for (const auto& [name, value] : environment)
            setenv(name.c_str(), value.c_str(), 1);
        dup2(open(output.c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
        dup2(open(errors.c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
        execv(program.c_str(), words.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), bytesOf(output),
            bytesOf(errors)};
}

} // namespace korl::test
