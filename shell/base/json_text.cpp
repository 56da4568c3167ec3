#include "shell/base/json_text.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <charconv>
#include <fmt/core.h>
#include <nlohmann/json.hpp>
#include <unordered_set>

namespace korl {

using nlohmann::json;

/// Gets from the parser what comes next, and finds it in the text. The parser tells no places, but what it
/// has accepted is found again by skipping what stands between two values.
class JsonText::Builder : public json::json_sax_t {
public:
    Builder(const std::string& text, std::vector<Node>& nodes) : my_text(text), my_nodes(nodes) {
        if (text.starts_with("\xEF\xBB\xBF"))
            my_place = 3; // the parser passes over a byte order mark, too
    }

    bool null() override { return addWord(Kind::null); }
    bool boolean(bool) override { return addWord(Kind::boolean); }
    bool number_integer(number_integer_t) override { return addWord(Kind::number); }
    bool number_unsigned(number_unsigned_t) override { return addWord(Kind::number); }
    bool number_float(number_float_t, const string_t&) override { return addWord(Kind::number); }
    bool string(string_t&) override { return addString(); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Kind::object); }
    bool start_array(std::size_t) override { return open(Kind::list); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        Level& level = my_levels[my_depth - 1];
        level.key = name;
        if (!level.keys.insert(name).second)
            throw Error(fmt::format("{}: the key {} stands twice in one object; keep one of them",
                                    printable(pointer()), inQuotes(name)));
        return addString();
    }

    bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
        // Without the parser's own number of the error, and not with all of an endless token.
        constexpr std::size_t max_length = 300;
        std::string what = error.what();
        what.erase(0, what.starts_with('[') ? what.find("] ") + 2 : 0);
        if (what.size() > max_length)
            what = what.substr(0, max_length) + " ...";
        throw Error("this is not JSON: " + printable(what));
    }

private:
    static constexpr std::size_t max_levels = 32;

    /// A list or object that is open.
    struct Level {
        std::uint32_t node = 0;
        std::string key;
        std::unordered_set<std::string> keys;
    };

    static bool isBetween(char letter) {
        return std::string_view(" \t\r\n,:").find(letter) != std::string::npos;
    }

    void skip() {
        while (isBetween(my_text[my_place]))
            ++my_place;
    }

    void add(Kind kind, std::size_t begin, std::size_t end) {
        const auto next = static_cast<std::uint32_t>(my_nodes.size() + 1);
        my_nodes.push_back({static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end), next, kind});
        my_place = end;
    }

    bool addWord(Kind kind) {
        skip();
        add(kind, my_place, std::min(my_text.find_first_of(" \t\r\n,]}", my_place), my_text.size()));
        return true;
    }

    bool addString() {
        skip();
        std::size_t end = my_place + 1;
        while (my_text[end] != '"')
            end += my_text[end] == '\\' ? 2 : 1;
        add(Kind::text, my_place, end + 1);
        return true;
    }

    bool open(Kind kind) {
        if (my_depth == max_levels)
            throw Error(fmt::format("{}: lists and objects lie more than {} deep in each other",
                                    printable(pointer()), max_levels));
        skip();
        if (my_levels.size() == my_depth)
            my_levels.emplace_back();
        my_levels[my_depth].node = static_cast<std::uint32_t>(my_nodes.size());
        my_levels[my_depth].key.clear();
        my_levels[my_depth].keys.clear();
        ++my_depth;
        add(kind, my_place, my_place + 1);
        return true;
    }

    bool close() {
        skip();
        Node& closed = my_nodes[my_levels[--my_depth].node];
        closed.end = static_cast<std::uint32_t>(++my_place);
        closed.next = static_cast<std::uint32_t>(my_nodes.size());
        return true;
    }

    /// Where the parser is. Counted only now: for messages.
    std::string pointer() const {
        std::string path;
        for (std::size_t depth = 0; depth < my_depth; ++depth) {
            const Level& level = my_levels[depth];
            if (my_nodes[level.node].kind == Kind::object) {
                path = pointerInto(path, level.key);
                continue;
            }
            // Up to the item that is open, or to the end of those that are whole.
            const std::size_t end = depth + 1 < my_depth ? my_levels[depth + 1].node : my_nodes.size();
            std::size_t count = 0;
            for (std::size_t item = level.node + 1; item < end; item = my_nodes[item].next)
                ++count;
            path = pointerInto(path, std::to_string(count));
        }
        return path.empty() ? "/" : path;
    }

    const std::string& my_text;
    std::vector<Node>& my_nodes;
    std::size_t my_place = 0;
    std::size_t my_depth = 0;
    std::vector<Level> my_levels; ///< the first `my_depth` of them are open
};

JsonText::JsonText(std::string text) : my_text(std::move(text)) {
    if (my_text.size() > max_bytes)
        throw Error(
            fmt::format("it has {} bytes, more than the {} that are read", my_text.size(), max_bytes));
    Builder builder(my_text, my_nodes);
    json::sax_parse(my_text, &builder);
}

JsonValue JsonText::root() const {
    return {*this, 0};
}

const char* JsonValue::kindName() const {
    switch (kind()) {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return "boolean";
    case Kind::number:
        return "number";
    case Kind::text:
        return "string";
    case Kind::list:
        return "array";
    case Kind::object:
        return "object";
    }
    return "";
}

std::string_view JsonValue::source() const {
    return std::string_view(my_text->my_text).substr(node().begin, node().end - node().begin);
}

std::string JsonValue::text() const {
    const std::string_view quoted = source();
    if (quoted.find('\\') != std::string_view::npos)
        return json::parse(quoted).get<std::string>();
    return std::string(quoted.substr(1, quoted.size() - 2));
}

template <class Number>
std::optional<Number> JsonValue::number() const {
    Number read{};
    const std::string_view digits = source();
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), read);
    if (kind() != Kind::number || result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        return std::nullopt;
    return read;
}

template std::optional<double> JsonValue::number() const;
template std::optional<float> JsonValue::number() const;
template std::optional<std::uint32_t> JsonValue::number() const;

std::vector<JsonValue> JsonValue::items() const {
    std::vector<JsonValue> found;
    for (std::uint32_t item = my_node + 1; item < node().next; item = at(item).node().next)
        found.push_back(at(item));
    return found;
}

std::optional<JsonValue> JsonValue::find(std::string_view key) const {
    for (std::uint32_t found = my_node + 1; found < node().next; found = at(found + 1).node().next) {
        const std::string_view quoted = at(found).source();
        const bool escaped = quoted.find('\\') != std::string_view::npos;
        if (escaped ? at(found).text() == key : quoted.substr(1, quoted.size() - 2) == key)
            return at(found + 1);
    }
    return std::nullopt;
}

std::string pointerInto(const std::string& pointer, std::string_view key) {
    std::string path;
    path.reserve(pointer.size() + key.size() + 1);
    path.append(pointer).append("/");
    for (const char letter : key)
        if (letter == '~' || letter == '/')
            path += letter == '~' ? "~0" : "~1";
        else
            path += letter;
    return path;
}

std::string jsonQuoted(const std::string& text) {
    try {
        return json(text).dump();
    } catch (const json::exception&) {
        throw Error("a text that is not UTF-8 cannot be written to a scene file: " +
                    json(text).dump(-1, ' ', true, json::error_handler_t::replace));
    }
}

} // namespace korl
