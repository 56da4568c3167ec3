// The arrows between the rooms run one way. This reads every #include of the sources and fails on one against
// them.

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

/// A room, and what of the project it may include: the beginnings of the include paths.
const std::map<std::string, std::vector<std::string>> arrows{
    {"host/orvid", {"orvid/"}},
    {"host/tessan", {"tessan/", "orvid/"}},
    {"host/sorvik", {"sorvik/", "tessan/", "orvid/"}},
    {"host/palune", {"palune/", "sorvik/", "tessan/", "orvid/"}},
    {"host/doltra", {"doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"navigation/light", {"doltra/", "palune/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/base", {"shell/base/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/plugins", {"shell/base/", "shell/plugins/", "sorvik/", "tessan/", "orvid/"}},
    {"shell/catalogue", {"shell/base/", "shell/catalogue/", "sorvik/", "tessan/", "orvid/"}},
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

/// What of other libraries a room may not include.
const std::map<std::string, std::regex> forbidden{
    {"host", std::regex("(GL|EGL|epoxy|Q[A-Z]|glm|assimp|nlohmann|CLI).*")},
    {"navigation/light", std::regex("(EGL|epoxy|glm|assimp|nlohmann|CLI).*")},
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

TEST(IncludeArrows, RunOneWay) {
    std::size_t files = 0;
    for (const auto& [room, allowed] : arrows) {
        const fs::path folder = fs::path(PROJECT_SOURCE_DIR) / room;
        ASSERT_TRUE(fs::is_directory(folder)) << room << " is gone; the list of arrows must follow";
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (!isSource(entry.path()))
                continue;
            ++files;
            for (const std::string& include : includesOf(entry.path())) {
                if (beginsWithOneOf(include, own)) {
                    EXPECT_TRUE(beginsWithOneOf(include, allowed))
                        << entry.path() << " includes " << include << ", against the arrows";
                }
                for (const auto& [where, what] : forbidden)
                    if ((room + "/").starts_with(where + "/")) {
                        EXPECT_FALSE(std::regex_match(include, what))
                            << entry.path() << " includes " << include << ", which does not belong in "
                            << room;
                    }
            }
        }
    }
    EXPECT_GT(files, 50u);
}

TEST(IncludeArrows, EveryRoomIsListed) {
    for (const char* const house : {"host", "navigation", "shell"})
        for (const auto& entry : fs::directory_iterator(fs::path(PROJECT_SOURCE_DIR) / house))
            if (entry.is_directory()) {
                const std::string room = std::string(house) + "/" + entry.path().filename().string();
                EXPECT_TRUE(arrows.contains(room)) << room << " has no arrows";
            }
}

} // namespace
