// scripts/setup with made-up package tools on the PATH: which packages it takes for installed, and what it
// asks for.

#include "tests/support/run_program.hpp"
#include "tests/support/temporary_folder.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using korl::test::bytesOf;
using korl::test::ProgramResult;

/// Answers from a table of lines "PACKAGE ARCHITECTURE STATUS" as the real one does: a line for each
/// architecture in which it knows a package, none for a package of which it has only heard, and exit code 1
/// where it has not.
constexpr const char* dpkg_query = R"sh(#!/bin/bash
while [[ $1 == -* ]]; do
    [[ $1 == -f ]] && { format=$2; shift; }
    shift
done
failed=0
for wanted; do
    known=
    while read -r package architecture status; do
        [[ $package == "$wanted" ]] || continue
        known=yes
        [[ $architecture != - ]] || architecture=
        line=${format//'${Package}'/$package}
        line=${line//'${Architecture}'/$architecture}
        line=${line//'${db:Status-Status}'/$status}
        printf "$line"
    done <"$MADE_UP/table"
    [[ $known ]] || { echo "dpkg-query: no packages found matching $wanted" >&2; failed=1; }
done
exit $failed
)sh";

constexpr const char* dpkg = "#!/bin/sh\necho amd64\n";
constexpr const char* apt_get =
    "#!/bin/sh\n"
    "echo \"$@\" >>\"$MADE_UP/asked\"\n"
    "echo 'Reading package lists...'\n"
    "if test -e \"$MADE_UP/fails\"; then echo 'E: no network' >&2; exit 100; fi\n";
constexpr const char* sudo = "#!/bin/sh\nexec \"$@\"\n"; // for those who run the tests without being root

class SetupScriptTest : public testing::Test {
protected:
    SetupScriptTest() {
        fs::create_directory(folder / "scripts");
        fs::copy(fs::path(PROJECT_SOURCE_DIR) / "scripts/setup", folder / "scripts/setup");
        fs::create_directory(folder / "bin");
        tool("dpkg-query", dpkg_query);
        tool("dpkg", dpkg);
        tool("apt-get", apt_get);
        tool("sudo", sudo);
    }

    void tool(const std::string& name, const std::string& script) {
        folder.write("bin/" + name, script);
        fs::permissions(folder / "bin/" / name, fs::perms::owner_all);
    }

    /// Runs the script where `packages` are wanted, in lines, and `table` is what dpkg knows.
    ProgramResult setUp(const std::string& packages, const std::string& table,
                        const std::vector<std::string>& arguments = {}) {
        folder.write("packages.txt", packages);
        folder.write("table", table);
        fs::remove(folder / "asked");
        const std::string path = (folder / "bin").string() + ":" + std::getenv("PATH");
        return korl::test::runProgram(folder / "scripts/setup", arguments,
                                      {{"PATH", path}, {"MADE_UP", folder.path()}});
    }

    /// What apt-get was asked for, in lines.
    std::string asked() const { return bytesOf(folder / "asked"); }

    const korl::test::TemporaryFolder folder;
};

TEST_F(SetupScriptTest, InstallsWhatIsNotInstalledOnThisArchitecture) {
    struct Case {
        std::string table;
        bool is_installed;
    };
    const std::vector<Case> cases{
        {"tool amd64 installed\n", true},
        {"tool all installed\n", true},
        {"tool - not-installed\n", false},
        {"tool amd64 not-installed\n", false},
        {"", false}, // unknown
        {"tool amd64 config-files\n", false},
        {"tool amd64 half-installed\n", false},
        {"tool amd64 unpacked\n", false},
        {"tool amd64 half-configured\n", false},
        {"tool amd64 installed\ntool i386 installed\n", true},
        {"tool i386 installed\ntool amd64 installed\n", true},
        {"tool amd64 installed\ntool i386 config-files\n", true},
        {"tool i386 installed\n", false},
        {"tool amd64 config-files\ntool i386 installed\n", false},
        {"tool amd64 not-installed\ntool i386 installed\n", false},
        {"toolbox amd64 installed\n", false},
    };
    for (const auto& [table, is_installed] : cases) {
        const ProgramResult result = setUp("tool\n", table);
        EXPECT_EQ(result.exit_code, 0) << table << result.errors;
        EXPECT_EQ(result.errors, "") << table;
        EXPECT_EQ(result.output, is_installed ? "" : "setup: installs tool\n") << table;
        EXPECT_EQ(asked(), is_installed ? "" : "-qq update\n-qq install -y --no-install-recommends tool\n")
            << table;
    }
}

TEST_F(SetupScriptTest, InstallsAllThatIsMissingAtOnceAndNothingElse) {
    const std::string table = "one amd64 installed\ntwo - not-installed\nthree all installed\n";
    const ProgramResult result = setUp("one\ntwo\nthree\nfour", table); // no line end behind the last
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(result.output, "setup: installs two four\n");
    EXPECT_EQ(asked(), "-qq update\n-qq install -y --no-install-recommends two four\n");
}

TEST_F(SetupScriptTest, InstallsOneSectionWhereItIsAskedTo) {
    const std::string packages = "# build\none\ntwo\n\n# test\nthree\n";
    EXPECT_EQ(setUp(packages, "", {"build"}).output, "setup: installs one two\n");
    EXPECT_EQ(setUp(packages, "", {"test"}).output, "setup: installs three\n");
    EXPECT_EQ(setUp(packages, "").output, "setup: installs one two three\n");
    const ProgramResult result = setUp(packages, "", {"tests"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors, "setup: packages.txt has no section \"tests\".\n");
    EXPECT_FALSE(fs::exists(folder / "asked"));
}

TEST_F(SetupScriptTest, SaysWhatCouldNotBeInstalled) {
    folder.write("fails", "");
    const ProgramResult result = setUp("one\ntwo\n", "one amd64 installed\n");
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.errors, "E: no network\nsetup: could not install: two\n");
}

} // namespace
