// The dependencies between the libraries run one way. This reads every #include of the sources and fails for
// one that they do not allow.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A library, and what of the project it may include: the beginnings of the include paths.
const std::map<std::string, std::vector<std::string>> dependencies{
    {"host/orvid", {"orvid/"}},
    {"host/tessan", {"tessan/", "orvid/"}},
    {"host/sorvik", {"sorvik/", "tessan/", "orvid/"}},
    {"host/palune", {"palune/", "sorvik/", "tessan/", "orvid/"}},
    {"host/doltra", {"doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"navigation/light", {"doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/base", {"shell/base/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/plugins", {"shell/base/", "shell/plugins/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/catalogue", {"shell/base/", "shell/catalogue/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/mesh", {"shell/base/", "shell/mesh/"}},
    {"shell/importer", {"shell/base/", "shell/mesh/", "shell/importer/"}},
    {"shell/image", {"shell/base/", "shell/image/"}},
    {"shell/scene",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "doltra/", "palune/", "sorvik/",
      "tessan/", "orvid/"}},
    {"shell/scene_file",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/scene_file/", "doltra/",
      "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/render",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/image/", "shell/render/",
      "doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/session",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/image/", "shell/plugins/",
      "shell/render/", "shell/session/", "doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/explain",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/image/", "shell/plugins/",
      "shell/render/", "shell/session/", "shell/explain/", "doltra/", "palune/", "sorvik/", "tessan/",
      "orvid/"}},
    {"shell/gallery",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/image/", "shell/plugins/",
      "shell/render/", "shell/session/", "shell/gallery/", "doltra/", "palune/", "sorvik/", "tessan/",
      "orvid/"}},
    {"shell/animation",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/image/", "shell/plugins/",
      "shell/render/", "shell/session/", "shell/scene_file/", "shell/animation/", "doltra/", "palune/",
      "sorvik/", "tessan/", "orvid/"}},
    {"shell/python",
     {"shell/base/", "shell/catalogue/", "shell/mesh/", "shell/scene/", "shell/image/", "shell/plugins/",
      "shell/render/", "shell/session/", "shell/scene_file/", "shell/explain/", "shell/animation/",
      "shell/python/", "doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/cli", {"shell/", "doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
};

/// What of other projects a library may not include.
const std::map<std::string, std::regex> forbidden{
    {"host", std::regex("(GL|EGL|epoxy|Q[A-Z]|glm|assimp|nlohmann|CLI|fmt).*")},
    {"navigation/light", std::regex("(EGL|epoxy|glm|assimp|nlohmann|CLI|fmt).*")},
    {"shell/base", std::regex("(GL|EGL|epoxy|Q[A-Z]|glm|assimp|CLI).*")},
    {"shell/plugins", std::regex("(GL|EGL|epoxy|Q[A-Z]|glm|assimp|nlohmann|CLI).*")},
    {"shell/catalogue", std::regex("(GL|EGL|epoxy|Q[A-Z]|glm|assimp|nlohmann|CLI).*")},
    {"shell/mesh", std::regex("(GL|EGL|epoxy|Q[A-Z]|assimp|nlohmann|CLI).*")},
    {"shell/importer", std::regex("(GL|EGL|epoxy|Q[A-Z]|CLI).*")},
    {"shell/image", std::regex("(GL|EGL|epoxy|Q[A-Z]|glm|assimp|nlohmann|CLI).*")},
    {"shell/scene", std::regex("(GL|EGL|epoxy|Q[A-Z]|assimp|nlohmann|CLI).*")},
    {"shell/scene_file", std::regex("(GL|EGL|epoxy|Q[A-Z]|assimp|CLI).*")},
};

/// The beginnings of include paths that are the project's own.
const std::vector<std::string> own{"orvid/",  "tessan/", "sorvik/",     "palune/",
                                   "doltra/", "shell/",  "navigation/", "tests/"};

bool beginsWithOneOf(const std::string& path, const std::vector<std::string>& beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](const std::string& beginning) { return path.starts_with(beginning); });
}

std::vector<std::string> includesOf(const fs::path& file) {
    static const std::regex include(R"(^\s*#\s*include\s*[<"]([^>"]+)[>"].*)");
    std::vector<std::string> paths;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        if (std::smatch match; std::regex_match(line, match, include))
            paths.push_back(match[1]);
    return paths;
}

bool isSource(const fs::path& file) {
    return file.extension() == ".hpp" || file.extension() == ".cpp" || file.extension() == ".inc";
}

TEST(Dependencies, RunOneWay) {
    std::size_t files = 0;
    for (const auto& [library, allowed] : dependencies) {
        const fs::path folder = fs::path(PROJECT_SOURCE_DIR) / library;
        ASSERT_TRUE(fs::is_directory(folder)) << library << " is gone; the list of dependencies must follow";
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (!isSource(entry.path()))
                continue;
            ++files;
            for (const std::string& include : includesOf(entry.path())) {
                if (beginsWithOneOf(include, own)) {
                    EXPECT_TRUE(beginsWithOneOf(include, allowed))
                        << entry.path() << " includes " << include << ", which it may not depend on";
                }
                for (const auto& [where, what] : forbidden)
                    if ((library + "/").starts_with(where + "/")) {
                        EXPECT_FALSE(std::regex_match(include, what))
                            << entry.path() << " includes " << include << ", which does not belong in "
                            << library;
                    }
            }
        }
    }
    EXPECT_GT(files, 50u);
}

TEST(Dependencies, EveryLibraryIsListed) {
    for (const char* const layer : {"host", "navigation", "shell"})
        for (const auto& entry : fs::directory_iterator(fs::path(PROJECT_SOURCE_DIR) / layer))
            if (entry.is_directory()) {
                const std::string library = std::string(layer) + "/" + entry.path().filename().string();
                EXPECT_TRUE(dependencies.contains(library)) << library << " is not listed";
            }
}

} // namespace
