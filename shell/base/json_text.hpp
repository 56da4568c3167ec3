#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korl {

class JsonValue;

/// A JSON text and where its values stand in it. It is checked whole when it is taken apart: it is JSON, no
/// object has a key twice, and nothing lies deeper than 32 lists and objects. A value costs 16 bytes,
/// whatever it is: strings and numbers stay in the text until they are asked for.
class JsonText {
public:
    enum class Kind : std::uint8_t { null, boolean, number, text, list, object };

    /// The longest text that is read, 256 MiB.
    static constexpr std::size_t max_bytes = std::size_t{1} << 28;

    /// Throws Error that says what is wrong and where: line and column for what is not JSON, a JSON pointer
    /// for a key that comes twice.
    explicit JsonText(std::string text);
    JsonText(const JsonText&) = delete;
    JsonText& operator=(const JsonText&) = delete;

    /// The value that holds all others. It and what is found through it look into this text.
    JsonValue root() const;

private:
    friend class JsonValue;
    class Builder;

    /// A value or a key, in the order of the text.
    struct Node {
        std::uint32_t begin, end; ///< where it stands in the text
        std::uint32_t next;       ///< the node behind all that is inside this one
        Kind kind;
    };

    std::string my_text;
    std::vector<Node> my_nodes;
};

/// A value of a JsonText, which must outlive it.
class JsonValue {
public:
    using Kind = JsonText::Kind;

    Kind kind() const { return node().kind; }
    bool is(Kind wanted) const { return kind() == wanted; }

    /// What kind of value it is, such as "object", for messages.
    const char* kindName() const;

    /// The value as it stands in the text.
    std::string_view source() const;

    /// What a string says. The value must be one.
    std::string text() const;

    /// Reads a number exactly, rounded to the nearest value of the type; nothing for one beyond its range,
    /// for what is not a number, and for a fraction where whole numbers are asked for.
    template <class Number>
    std::optional<Number> number() const;

    /// The values of a list, in order; the value must be one.
    std::vector<JsonValue> items() const;

    /// Shows each key of an object with its value, in order; the value must be one.
    template <class Visit>
    void forEachMember(Visit visit) const {
        for (std::uint32_t key = my_node + 1; key < node().next; key = at(key + 1).node().next)
            visit(at(key).text(), at(key + 1));
    }

    /// The value of an object's key, or nothing. The value must be an object.
    std::optional<JsonValue> find(std::string_view key) const;

private:
    friend class JsonText;
    JsonValue(const JsonText& text, std::uint32_t node) : my_text(&text), my_node(node) {}

    const JsonText::Node& node() const { return my_text->my_nodes[my_node]; }
    JsonValue at(std::uint32_t other) const { return {*my_text, other}; }

    const JsonText* my_text;
    std::uint32_t my_node;
};

/// A JSON pointer that leads one step further.
std::string pointerInto(const std::string& pointer, std::string_view key);

/// A text as JSON: in quotes, with what must be escaped escaped. Throws Error for what is not UTF-8.
std::string jsonQuoted(const std::string& text);

} // namespace korl
