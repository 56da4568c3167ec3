#pragma once

#include <assimp/DefaultIOSystem.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korl {

/// Where a model lies, and whether the files that it names must lie there too.
struct ModelPlace {
    std::filesystem::path file;
    bool anywhere = false;

    /// Whether the model may have a file read: that lies in its own folder or below, wherever symbolic links
    /// lead, unless it may lie anywhere. A file that is not there may.
    bool allows(const std::filesystem::path& named) const;
};

/// A path as a URI writes it, with each %XX as the character that it stands for.
std::string percentDecoded(std::string_view uri);

/// The files that the importer opens: the model itself, and of those that it names the regular ones that its
/// place allows.
class CompanionFiles final : public Assimp::DefaultIOSystem {
public:
    explicit CompanionFiles(ModelPlace place) : my_place(std::move(place)) {}

    bool Exists(const char* file) const override; ///< without opening it, which waits where it is a FIFO
    Assimp::IOStream* Open(const char* file, const char* mode) override;

    /// Why the model cannot be read, because of a file that it names; empty where it can.
    const std::string& refusal() const { return my_refusal; }

    /// What was left out, each file once.
    std::vector<std::string> notes() const;

private:
    /// The file to open where the importer asks for one that the model names; nothing where it is left out.
    std::optional<std::filesystem::path> companion(const std::filesystem::path& asked);
    void refuse(const std::string& reason);

    ModelPlace my_place;
    std::string my_refusal;
    std::map<std::string, std::string> my_left_out; ///< what is told of it, by the file's name
};

} // namespace korl
