#include "resource_format.hpp"

#include "big_endian.hpp"

namespace artwork {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t is_folder = 2, is_plain_file = 0;
constexpr std::uint16_t any_territory = 0, any_language = 1; ///< QLocale::AnyCountry and QLocale::C

void appendFolder(Bytes& tree, std::uint64_t name, std::uint32_t children, std::uint32_t first_child) {
    appendNumber<4>(tree, name);
    appendNumber<2>(tree, is_folder);
    appendNumber<4>(tree, children);
    appendNumber<4>(tree, first_child);
    appendNumber<8>(tree, 0);
}

void appendFile(Bytes& tree, std::uint64_t name, std::uint32_t data, std::uint64_t changed) {
    appendNumber<4>(tree, name);
    appendNumber<2>(tree, is_plain_file);
    appendNumber<2>(tree, any_territory);
    appendNumber<2>(tree, any_language);
    appendNumber<4>(tree, data);
    appendNumber<8>(tree, changed);
}

/// @returns the name's offset.
std::size_t appendName(Bytes& names, std::string_view name) {
    const std::size_t offset = names.size();
    appendNumber<2>(names, name.size());
    appendNumber<4>(names, hashOfName(name));
    for (const char character : name)
        appendNumber<2>(names, static_cast<unsigned char>(character));
    return offset;
}

std::string definition(const std::string& name, const Bytes& bytes) {
    std::string text = "const unsigned char " + name + "[] = {";
    for (std::size_t i = 0; i < bytes.size(); ++i)
        text += (i % 24 == 0 ? "\n    " : "") + std::to_string(bytes[i]) + ",";
    return text + "\n};\n\n";
}

} // namespace

std::uint32_t hashOfName(std::string_view name) {
    std::uint32_t hash = 0;
    for (const char character : name) {
        hash = (hash << 4) + static_cast<unsigned char>(character);
        hash ^= (hash & 0xf0000000) >> 23;
        hash &= 0x0fffffff;
    }
    return hash;
}

Resource singleFile(std::string_view folder, std::string_view name, const Bytes& content,
                    std::uint64_t changed) {
    Resource resource;
    const std::size_t folder_name = appendName(resource.names, folder);
    const std::size_t file_name = appendName(resource.names, name);
    appendFolder(resource.tree, 0, 1, 1); // the root; nobody reads its name
    appendFolder(resource.tree, folder_name, 1, 2);
    appendFile(resource.tree, file_name, 0, changed);
    appendNumber<4>(resource.data, content.size());
    resource.data.insert(resource.data.end(), content.begin(), content.end());
    return resource;
}

std::string sourceOf(const Resource& resource) {
    return "#include \"resource_arrays.hpp\"\n\nnamespace tovek {\n\n" +
           definition("resource_tree", resource.tree) + definition("resource_names", resource.names) +
           definition("resource_data", resource.data) + "} // namespace tovek\n";
}

} // namespace artwork
