// One description of a thing's fields serves both ways: JsonReader fills the thing from a tree, JsonWriter makes a
// tree of it. Both have the same members, so that a description is a template over them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sim/firmware/json_tree.h"

namespace qrx::sim {

// A word that stands for a number in the text.
struct JsonWord {
    QRX_U32 value;
    const char* word;
};

// Reads the members of one object. A field that is not there keeps the value it has. The first thing that is wrong
// becomes the failure, and everything after it does nothing.
class JsonReader {
public:
    static constexpr bool kReads = true;

    JsonReader(const JsonTree& object, std::string_view file, Failure& failure);

    template <class Number>
    void number(const char* key, Number& value, QRX_U64 least, QRX_U64 most)
    {
        if (const auto read = read_number(key, least, most)) {
            value = static_cast<Number>(*read);
        }
    }
    void flag(const char* key, bool& value);
    // At most `longest` letters; printable ASCII, unless `any` lets every letter pass but zero and those beyond ASCII.
    void text(const char* key, std::string& value, std::size_t longest, bool any = false);
    // One of `words`, or a number up to 255.
    void code(const char* key, QRX_U8& value, std::span<const JsonWord> words);
    // A list of `words`, each for the bit of its value; further bits as numbers of bits below `bits`.
    template <class Number>
    void mask(const char* key, Number& value, std::span<const JsonWord> words)
    {
        if (const auto read = read_mask(key, words, sizeof(Number) * 8)) {
            value = static_cast<Number>(*read);
        }
    }
    // Pairs of hexadecimal digits, exactly as many as `bytes` takes.
    void bytes(const char* key, std::span<QRX_U8> bytes);
    // Pairs of hexadecimal digits, at most `longest`.
    void bytes(const char* key, std::vector<QRX_U8>& bytes, std::size_t longest);
    // A list of numbers, at most `longest`.
    template <class Number>
    void numbers(const char* key, std::vector<Number>& values, std::size_t longest, QRX_U64 most)
    {
        if (const auto read = read_numbers(key, longest, most)) {
            values.clear();
            for (const QRX_U64 value : *read) {
                values.push_back(static_cast<Number>(value));
            }
        }
    }
    // An object, described by `describe(io)`.
    template <class Describe>
    void object(const char* key, Describe describe)
    {
        if (const JsonTree* const value = take(key, JsonTree::Kind::kObject)) {
            JsonReader inner(*value, file_, failure_);
            describe(inner);
            inner.finish();
        }
    }
    // An object or null.
    template <class Value, class Describe>
    void optional(const char* key, std::optional<Value>& value, Describe describe)
    {
        if (null(key)) {
            known_.emplace_back(key);
            value.reset();
            return;
        }
        object(key, [&](JsonReader& inner) {
            value.emplace();
            describe(inner, *value);
        });
    }
    // A list of objects, at most `longest`, each described by `describe(io, item)`.
    template <class Item, class Describe>
    void list(const char* key, std::vector<Item>& items, std::size_t longest, Describe describe)
    {
        const JsonTree* const value = take(key, JsonTree::Kind::kList);
        if (value == nullptr) {
            return;
        }
        if (value->items.size() > longest) {
            fail(*value, key, "has more than " + std::to_string(longest) + " entries");
            return;
        }
        items.clear();
        for (const JsonTree& entry : value->items) {
            if (entry.kind != JsonTree::Kind::kObject) {
                fail(entry, key, std::string("holds ") + entry.kind_name() + "; its entries are objects");
            }
            if (failed()) {
                return;
            }
            JsonReader inner(entry, file_, failure_);
            items.emplace_back();
            describe(inner, items.back());
            inner.finish();
        }
    }
    // Lines of text, each ended by a line break in `value`.
    void lines(const char* key, std::string& value);

    // Fails at `key`, or at the object itself where it has no such key, unless `good`.
    void check(bool good, const char* key, const std::string& text);
    // Whether the object has the key.
    [[nodiscard]] bool has(const char* key) const { return object_.find(key) != nullptr; }
    [[nodiscard]] bool failed() const { return !failure_.text.empty(); }
    // Fails when the object has a member that no field has asked for.
    void finish();

private:
    [[nodiscard]] const JsonTree* take(const char* key, JsonTree::Kind kind);
    [[nodiscard]] bool null(const char* key) const;
    std::optional<QRX_U64> read_number(const char* key, QRX_U64 least, QRX_U64 most);
    std::optional<QRX_U64> read_mask(const char* key, std::span<const JsonWord> words, unsigned bits);
    std::optional<std::vector<QRX_U64>> read_numbers(const char* key, std::size_t longest, QRX_U64 most);
    void fail(const JsonTree& at, const char* key, const std::string& text);

    const JsonTree& object_;
    std::string_view file_;
    Failure& failure_;
    std::vector<std::string_view> known_;
};

// Writes every field into an object.
class JsonWriter {
public:
    static constexpr bool kReads = false;

    explicit JsonWriter(JsonTree& object) : object_(object) { object_.kind = JsonTree::Kind::kObject; }

    template <class Number>
    void number(const char* key, const Number& value, QRX_U64 /*least*/, QRX_U64 /*most*/)
    {
        add(key, of(value));
    }
    void flag(const char* key, bool value);
    void text(const char* key, const std::string& value, std::size_t longest, bool any = false);
    void code(const char* key, QRX_U8 value, std::span<const JsonWord> words);
    template <class Number>
    void mask(const char* key, const Number& value, std::span<const JsonWord> words)
    {
        add_mask(key, value, words);
    }
    void bytes(const char* key, std::span<const QRX_U8> bytes);
    void bytes(const char* key, const std::vector<QRX_U8>& bytes, std::size_t longest);
    template <class Number>
    void numbers(const char* key, const std::vector<Number>& values, std::size_t /*longest*/, QRX_U64 /*most*/)
    {
        JsonTree& list = add(key, {});
        list.kind = JsonTree::Kind::kList;
        for (const Number value : values) {
            list.items.push_back(of(value));
        }
    }
    template <class Describe>
    void object(const char* key, Describe describe)
    {
        JsonWriter inner(add(key, {}));
        describe(inner);
    }
    template <class Value, class Describe>
    void optional(const char* key, std::optional<Value>& value, Describe describe)
    {
        JsonTree& member = add(key, {});
        if (value) {
            JsonWriter inner(member);
            describe(inner, *value);
        }
    }
    template <class Item, class Describe>
    void list(const char* key, std::vector<Item>& items, std::size_t /*longest*/, Describe describe)
    {
        JsonTree& list = add(key, {});
        list.kind = JsonTree::Kind::kList;
        list.items.resize(items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            JsonWriter inner(list.items[i]);
            describe(inner, items[i]);
        }
    }
    void lines(const char* key, const std::string& value);
    void check(bool /*good*/, const char* /*key*/, const std::string& /*text*/) {}
    [[nodiscard]] bool has(const char* /*key*/) const { return true; }
    [[nodiscard]] bool failed() const { return false; }

private:
    [[nodiscard]] static JsonTree of(QRX_U64 number);
    [[nodiscard]] static JsonTree of(std::string text);
    JsonTree& add(const char* key, JsonTree value);
    void add_mask(const char* key, QRX_U64 value, std::span<const JsonWord> words);

    JsonTree& object_;
};

}  // namespace qrx::sim
