#pragma once

#include "tests/support/temporary_folder.hpp"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace korl::test {

/// What a program left when it ended.
struct ProgramResult {
    int exit_code; ///< 128 + number where a signal ended it
    std::string output;
    std::string errors;
};

/// Runs a program to its end. The environment is this process's, with `environment` set in addition.
ProgramResult runProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                         const std::vector<std::pair<std::string, std::string>>& environment = {});

} // namespace korl::test
