#include "shell/importer/gltf_check.hpp"

#include "shell/base/error.hpp"
#include "shell/base/json_text.hpp"
#include "shell/base/printable.hpp"
#include "shell/importer/model_limits.hpp"
#include "shell/mesh/model_file.hpp"

#include <array>
#include <filesystem>
#include <fmt/core.h>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace korl {

namespace {

namespace fs = std::filesystem;

/// Where something stands: a JSON pointer.
class Place {
public:
    Place inside(std::string_view key) const { return Place(pointerInto(my_pointer, key)); }
    Place inside(std::size_t index) const { return inside(std::to_string(index)); }
    Place() = default;

    [[noreturn]] void fail(const std::string& what) const {
        throw Error(my_pointer.empty() ? what : fmt::format("{}: {}", printable(my_pointer), what));
    }

private:
    explicit Place(std::string pointer) : my_pointer(std::move(pointer)) {}

    std::string my_pointer;
};

/// What stands in a text, for messages.
std::string shown(std::string_view text) {
    constexpr std::size_t max_length = 100;
    return printable(text.substr(0, max_length)) + (text.size() > max_length ? "..." : "");
}

/// The objects of a list, with what is needed of each one read by `read(object, place)`; none where there is
/// no such list.
template <class Read>
auto readList(const JsonValue& root, std::string_view key, Read read) {
    using Entry = decltype(read(root, Place()));
    std::vector<Entry> entries;
    const auto list = root.find(key);
    if (!list)
        return entries;
    const Place place = Place().inside(key);
    if (!list->is(JsonText::Kind::list))
        place.fail(fmt::format("expected an array, found {}", list->kindName()));
    for (const JsonValue& value : list->items()) {
        const Place where = place.inside(entries.size());
        if (!value.is(JsonText::Kind::object))
            where.fail(fmt::format("expected an object, found {}", value.kindName()));
        entries.push_back(read(value, where));
    }
    return entries;
}

std::optional<std::uint32_t> wholeNumber(const JsonValue& object, std::string_view key, const Place& place) {
    const auto value = object.find(key);
    if (!value)
        return std::nullopt;
    const auto number = value->number<std::uint32_t>();
    if (!number)
        place.inside(key).fail("expected a whole number up to 4294967295, found " + shown(value->source()));
    return number;
}

/// The number of an entry in a list of so many.
std::optional<std::uint32_t> indexOf(const JsonValue& object, std::string_view key, const Place& place,
                                     std::size_t count, const std::string& what) {
    const auto index = wholeNumber(object, key, place);
    if (index && *index >= count)
        place.inside(key).fail(fmt::format("leads to {} {}, but there are {}", what, *index, count));
    return index;
}

void requireVersion(const JsonValue& root) {
    const Place place = Place().inside("asset").inside("version");
    const auto asset = root.find("asset");
    const auto version = asset && asset->is(JsonText::Kind::object) ? asset->find("version") : std::nullopt;
    if (!version || !version->is(JsonText::Kind::text))
        place.fail("expected the version of glTF, found none");
    if (!version->text().starts_with("2."))
        place.fail(fmt::format("is \"{}\", but glTF is read in version 2", shown(version->text())));
}

/// The length of a buffer, whose file was looked at.
std::uint64_t readBuffer(const JsonValue& buffer, const Place& place, const ModelPlace& model) {
    const auto uri = buffer.find("uri");
    const std::uint64_t length = wholeNumber(buffer, "byteLength", place).value_or(0);
    if (!uri)
        return length;
    const Place where = place.inside("uri");
    if (!uri->is(JsonText::Kind::text))
        where.fail(fmt::format("expected a text, found {}", uri->kindName()));
    const std::string text = uri->text(), quoted = fmt::format("\"{}\"", shown(text));
    const std::string_view scheme = uriScheme(text);
    if (scheme == "data")
        return length;
    if (!scheme.empty())
        where.fail(fmt::format("{} is a URI of the scheme \"{}\"; only files and \"data\" are read", quoted,
                               scheme));
    std::error_code problem;
    const fs::path file = model.fileOf(text);
    const fs::file_type type = fs::status(file, problem).type();
    if (type == fs::file_type::not_found)
        where.fail("there is no file " + quoted);
    if (const std::string kind = otherKind(type); !kind.empty())
        where.fail(fmt::format("{} is {}", quoted, kind));
    if (!model.allows(file))
        where.fail(fmt::format("the file {} lies outside the model's folder; allow it with --model-anywhere "
                               "(model_anywhere in Python)",
                               quoted));
    return length;
}

/// The length of a view, which lies in its buffer.
std::uint64_t readView(const JsonValue& view, const Place& place, const std::vector<std::uint64_t>& buffers) {
    const auto buffer = indexOf(view, "buffer", place, buffers.size(), "buffer");
    if (!buffer)
        place.fail("lacks \"buffer\"");
    const std::uint64_t length = wholeNumber(view, "byteLength", place).value_or(0);
    const std::uint64_t begin = wholeNumber(view, "byteOffset", place).value_or(0);
    if (begin + length > buffers[*buffer])
        place.fail(
            fmt::format("ends at byte {} of its buffer, which has {}", begin + length, buffers[*buffer]));
    return length;
}

std::size_t componentSize(const JsonValue& accessor, const Place& place) {
    constexpr std::array<std::pair<std::uint32_t, std::size_t>, 6> sizes{
        {{5120, 1}, {5121, 1}, {5122, 2}, {5123, 2}, {5125, 4}, {5126, 4}}};
    const auto type = wholeNumber(accessor, "componentType", place);
    for (const auto& [code, size] : sizes)
        if (type == code)
            return size;
    place.fail(type ? fmt::format("has the unknown component type {}", *type) : "lacks \"componentType\"");
}

std::size_t componentCount(const JsonValue& accessor, const Place& place) {
    constexpr std::array<std::pair<std::string_view, std::size_t>, 7> counts{
        {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4}, {"MAT2", 4}, {"MAT3", 9}, {"MAT4", 16}}};
    const auto type = accessor.find("type");
    if (!type || !type->is(JsonText::Kind::text))
        place.fail("lacks \"type\"");
    for (const auto& [name, count] : counts)
        if (type->text() == name)
            return count;
    place.fail(fmt::format("has the unknown type \"{}\"", shown(type->text())));
}

/// A list of values lies in its view.
bool readAccessor(const JsonValue& accessor, const Place& place, const std::vector<std::uint64_t>& views,
                  const std::vector<std::uint64_t>& strides) {
    const std::uint64_t size = componentSize(accessor, place) * componentCount(accessor, place);
    const auto count = wholeNumber(accessor, "count", place);
    if (!count || *count == 0)
        place.fail("lacks \"count\", or it is 0");
    const std::uint64_t begin = wholeNumber(accessor, "byteOffset", place).value_or(0);
    const auto view = indexOf(accessor, "bufferView", place, views.size(), "buffer view");
    if (!view)
        return true;
    const std::uint64_t stride = strides[*view] == 0 ? size : strides[*view];
    const std::uint64_t end = begin + (*count - std::uint64_t{1}) * stride + size;
    if (end > views[*view])
        place.fail(fmt::format("ends at byte {} of its buffer view, which has {}", end, views[*view]));
    return true;
}

void checkData(const JsonValue& root, const ModelPlace& model, std::optional<std::uint64_t> binary_chunk) {
    const auto buffers = readList(root, "buffers", [&](const JsonValue& buffer, const Place& place) {
        const std::uint64_t length = readBuffer(buffer, place, model);
        if (binary_chunk && !buffer.find("uri") && length > *binary_chunk)
            place.fail(fmt::format("has {} bytes, but the file holds {} for it", length, *binary_chunk));
        return length;
    });
    const auto views = readList(root, "bufferViews", [&](const JsonValue& view, const Place& place) {
        return readView(view, place, buffers);
    });
    const auto strides = readList(root, "bufferViews", [](const JsonValue& view, const Place& place) {
        return std::uint64_t{wholeNumber(view, "byteStride", place).value_or(0)};
    });
    readList(root, "accessors", [&](const JsonValue& accessor, const Place& place) {
        return readAccessor(accessor, place, views, strides);
    });
}

/// The nodes that a node or a scene names, each with its place.
std::vector<std::pair<std::uint32_t, Place>> readReferences(const JsonValue& owner, std::string_view key,
                                                            const Place& place, std::size_t count) {
    std::vector<std::pair<std::uint32_t, Place>> nodes;
    const auto list = owner.find(key);
    if (!list)
        return nodes;
    if (!list->is(JsonText::Kind::list))
        place.inside(key).fail(fmt::format("expected an array, found {}", list->kindName()));
    for (const JsonValue& value : list->items()) {
        const Place where = place.inside(key).inside(nodes.size());
        const auto index = value.number<std::uint32_t>();
        if (!index || *index >= count)
            where.fail(fmt::format("leads to node {}, but there are {}", shown(value.source()), count));
        nodes.emplace_back(*index, where);
    }
    return nodes;
}

void checkNodes(const JsonValue& root) {
    const std::size_t count =
        readList(root, "nodes", [](const JsonValue&, const Place&) { return true; }).size();
    const auto children = readList(root, "nodes", [&](const JsonValue& node, const Place& place) {
        return readReferences(node, "children", place, count);
    });
    std::vector<bool> has_parent(count);
    for (const auto& list : children)
        for (const auto& [child, place] : list) {
            if (has_parent[child])
                place.fail(fmt::format("the node {} has two parents", child));
            has_parent[child] = true;
        }
    readList(root, "scenes", [&](const JsonValue& scene, const Place& place) {
        std::vector<bool> is_root(count);
        for (const auto& [node, where] : readReferences(scene, "nodes", place, count)) {
            if (has_parent[node] || is_root[node])
                where.fail(fmt::format("the node {} is a root, but has {}", node,
                                       has_parent[node] ? "a parent" : "been one before"));
            is_root[node] = true;
        }
        return true;
    });
    // Each node has one parent at most: what is not reached from a node without one goes round in a circle,
    // which no scene leads into.
    std::vector<std::uint32_t> level;
    for (std::uint32_t node = 0; node < count; ++node)
        if (!has_parent[node])
            level.push_back(node);
    for (std::size_t depth = 1; !level.empty(); ++depth) {
        std::vector<std::uint32_t> next;
        for (const std::uint32_t node : level)
            for (const auto& [child, place] : children[node]) {
                if (depth == max_node_levels)
                    place.fail(fmt::format("the nodes lie more than {} deep in each other", max_node_levels));
                next.push_back(child);
            }
        level = std::move(next);
    }
}

} // namespace

void requireSoundGltf(std::string json, const ModelPlace& place, std::optional<std::uint64_t> binary_chunk) {
    const JsonText text(std::move(json));
    const JsonValue root = text.root();
    if (!root.is(JsonText::Kind::object))
        throw Error(fmt::format("expected an object, found {}", root.kindName()));
    requireVersion(root);
    checkData(root, place, binary_chunk);
    checkNodes(root);
}

} // namespace korl
