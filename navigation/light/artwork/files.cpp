#include "files.hpp"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace artwork {

std::vector<std::uint8_t> readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string content(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
        throw std::runtime_error("the file " + file.string() + " can't be read; see that it exists");
    return {content.begin(), content.end()};
}

void writeFile(const std::filesystem::path& file, const std::string& content) {
    std::error_code ignored; // a folder that can't be made shows when the file is opened
    std::filesystem::create_directories(file.parent_path(), ignored);
    std::filesystem::path beside = file;
    beside += ".new";
    std::ofstream stream(beside, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream)
        throw std::runtime_error("the file " + file.string() +
                                 " can't be written; see that its folder can be and that there is room");
    std::filesystem::rename(beside, file);
}

void writeFile(const std::filesystem::path& file, const std::vector<std::uint8_t>& content) {
    writeFile(file, std::string(content.begin(), content.end()));
}

} // namespace artwork
