#pragma once

#include <assimp/DefaultIOSystem.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korl {

/// Where a model lies, and whether the files that it names must lie there too.
struct ModelPlace {
    std::filesystem::path file;
    bool anywhere = false;

    /// The file that the model names. In glTF the name is a URI: where no file is called as it is written, it
    /// is percent-decoded.
    std::filesystem::path fileOf(const std::string& name) const;

    /// Whether the model may have a file read: that lies in its own folder or below, wherever symbolic links
    /// lead, unless it may lie anywhere. A file that is not there may.
    bool allows(const std::filesystem::path& named) const;
};

/// The files that the importer opens: the model itself, and of those that it names the regular ones that its
/// place allows.
class CompanionFiles final : public Assimp::DefaultIOSystem {
public:
    explicit CompanionFiles(ModelPlace place) : my_place(std::move(place)) {}

    bool Exists(const char* file) const override; ///< without opening it, which waits where it is a FIFO
    Assimp::IOStream* Open(const char* file, const char* mode) override;

    /// Why the model cannot be read, because of a file that it names; empty where it can.
    const std::string& refusal() const { return my_refusal; }

    /// What was left out, each file once; of many the first ones, and how many more there are.
    std::vector<std::string> notes() const;

private:
    /// The file to open where the importer asks for one that the model names; nothing where it is left out.
    std::optional<std::filesystem::path> companion(const std::filesystem::path& asked);
    void refuse(const std::string& reason);
    /// Whether a missing file was found in another place: then the importer tries the last parts of its path
    /// alone.
    bool isOpened(std::string_view path) const;

    struct LeftOut {
        LeftOut(std::string text, bool missing) : note(std::move(text)), is_missing(missing) {}
        std::string note;
        bool is_missing;
    };

    ModelPlace my_place;
    std::string my_refusal;
    std::map<std::string, LeftOut> my_left_out;   ///< by the file's path
    std::set<std::string, std::less<>> my_opened; ///< paths
};

} // namespace korl
