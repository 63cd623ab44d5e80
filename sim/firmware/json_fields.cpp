#include "sim/firmware/json_fields.h"

#include <algorithm>

#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

std::string quoted(std::string_view key)
{
    std::string text(1, '\'');
    text += key;
    text += '\'';
    return text;
}

const JsonWord* find_word(std::span<const JsonWord> words, std::string_view word)
{
    const auto found = std::find_if(words.begin(), words.end(), [&](const JsonWord& w) { return w.word == word; });
    return found == words.end() ? nullptr : &*found;
}

const JsonWord* find_value(std::span<const JsonWord> words, QRX_U64 value)
{
    const auto found = std::find_if(words.begin(), words.end(), [&](const JsonWord& w) { return w.value == value; });
    return found == words.end() ? nullptr : &*found;
}

std::string listed(std::span<const JsonWord> words)
{
    std::string text;
    for (const JsonWord& word : words) {
        text += text.empty() ? "\"" : ", \"";
        text += word.word;
        text += '"';
    }
    return text;
}

}  // namespace

JsonReader::JsonReader(const JsonTree& object, std::string_view file, Failure& failure)
    : object_(object), file_(file), failure_(failure)
{
}

void JsonReader::fail(const JsonTree& at, const char* key, const std::string& text)
{
    if (!failed()) {
        failure_ = failure_at(file_, at.line, quoted(key) + " " + text);
    }
}

bool JsonReader::null(const char* key) const
{
    const JsonTree::Member* const member = object_.find(key);
    return member != nullptr && member->value.kind == JsonTree::Kind::kNull;
}

const JsonTree* JsonReader::take(const char* key, JsonTree::Kind kind)
{
    known_.emplace_back(key);
    const JsonTree::Member* const member = object_.find(key);
    if (member == nullptr || failed()) {
        return nullptr;
    }
    if (member->value.kind != kind) {
        JsonTree wanted;
        wanted.kind = kind;
        fail(member->value, key, std::string("must be ") + wanted.kind_name() + ", not " + member->value.kind_name());
        return nullptr;
    }
    return &member->value;
}

std::optional<QRX_U64> JsonReader::read_number(const char* key, QRX_U64 least, QRX_U64 most)
{
    const JsonTree* const value = take(key, JsonTree::Kind::kNumber);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->number < least || value->number > most) {
        fail(*value, key,
             "is " + std::to_string(value->number) + "; allowed are " + std::to_string(least) + " to " +
                 std::to_string(most));
        return std::nullopt;
    }
    return value->number;
}

void JsonReader::flag(const char* key, bool& value)
{
    if (const JsonTree* const read = take(key, JsonTree::Kind::kFlag)) {
        value = read->flag;
    }
}

void JsonReader::text(const char* key, std::string& value, std::size_t longest, bool any)
{
    const JsonTree* const read = take(key, JsonTree::Kind::kText);
    if (read == nullptr) {
        return;
    }
    const char least = any ? '\1' : ' ';
    const char most = any ? '\x7F' : '~';
    if (read->text.size() > longest) {
        fail(*read, key,
             "has " + std::to_string(read->text.size()) + " letters; allowed are at most " + std::to_string(longest));
    } else if (!std::all_of(read->text.begin(), read->text.end(),
                            [&](char letter) { return letter >= least && letter <= most; })) {
        fail(*read, key, any ? "has a letter that is zero or not ASCII" : "has a letter that is not printable ASCII");
    } else {
        value = read->text;
    }
}

void JsonReader::code(const char* key, QRX_U8& value, std::span<const JsonWord> words)
{
    const JsonTree::Member* const member = object_.find(key);
    if (member == nullptr || failed() || member->value.kind == JsonTree::Kind::kNumber) {
        number(key, value, 0, 255);
        return;
    }
    known_.emplace_back(key);
    const JsonWord* const word =
        member->value.kind == JsonTree::Kind::kText ? find_word(words, member->value.text) : nullptr;
    if (word == nullptr) {
        const bool text = member->value.kind == JsonTree::Kind::kText;
        const std::string given = text ? quoted(member->value.text) : std::string(member->value.kind_name());
        fail(member->value, key, "is " + given + "; allowed are " + listed(words) + " or a number up to 255");
        return;
    }
    value = static_cast<QRX_U8>(word->value);
}

std::optional<QRX_U64> JsonReader::read_mask(const char* key, std::span<const JsonWord> words, unsigned bits)
{
    const JsonTree* const value = take(key, JsonTree::Kind::kList);
    if (value == nullptr) {
        return std::nullopt;
    }
    QRX_U64 mask = 0;
    for (const JsonTree& item : value->items) {
        const JsonWord* const word = item.kind == JsonTree::Kind::kText ? find_word(words, item.text) : nullptr;
        if (word != nullptr) {
            mask |= QRX_U64{1} << word->value;
        } else if (item.kind == JsonTree::Kind::kNumber && item.number < bits) {
            mask |= QRX_U64{1} << item.number;
        } else {
            fail(
                item, key,
                "holds something else than " + listed(words) + " or the number of a bit below " + std::to_string(bits));
            return std::nullopt;
        }
    }
    return mask;
}

void JsonReader::bytes(const char* key, std::span<QRX_U8> bytes)
{
    if (const JsonTree* const value = take(key, JsonTree::Kind::kText)) {
        if (!from_hex(value->text, bytes)) {
            fail(*value, key, "must be " + std::to_string(bytes.size() * 2) + " hexadecimal digits");
        }
    }
}

void JsonReader::bytes(const char* key, std::vector<QRX_U8>& bytes, std::size_t longest)
{
    if (const JsonTree* const value = take(key, JsonTree::Kind::kText)) {
        std::vector<QRX_U8> read(value->text.size() / 2);
        if (read.size() > longest || !from_hex(value->text, read)) {
            fail(*value, key, "must be pairs of hexadecimal digits, at most " + std::to_string(longest));
        } else {
            bytes = std::move(read);
        }
    }
}

std::optional<std::vector<QRX_U64>> JsonReader::read_numbers(const char* key, std::size_t longest, QRX_U64 most)
{
    const JsonTree* const value = take(key, JsonTree::Kind::kList);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->items.size() > longest) {
        fail(*value, key, "has more than " + std::to_string(longest) + " entries");
        return std::nullopt;
    }
    std::vector<QRX_U64> numbers;
    for (const JsonTree& item : value->items) {
        if (item.kind != JsonTree::Kind::kNumber || item.number > most) {
            fail(item, key, "holds something else than numbers up to " + std::to_string(most));
            return std::nullopt;
        }
        numbers.push_back(item.number);
    }
    return numbers;
}

void JsonReader::lines(const char* key, std::string& value)
{
    const JsonTree* const list = take(key, JsonTree::Kind::kList);
    if (list == nullptr) {
        return;
    }
    value.clear();
    for (const JsonTree& item : list->items) {
        if (item.kind != JsonTree::Kind::kText || item.text.find('\n') != std::string::npos) {
            fail(item, key, "holds something else than single lines of text");
            return;
        }
        value += item.text + "\n";
    }
}

void JsonReader::check(bool good, const char* key, const std::string& text)
{
    if (!good && !failed()) {
        const JsonTree::Member* const member = object_.find(key);
        fail(member != nullptr ? member->value : object_, key, text);
    }
}

void JsonReader::finish()
{
    for (const JsonTree::Member& member : object_.members) {
        if (failed()) {
            return;
        }
        if (std::find(known_.begin(), known_.end(), member.key) == known_.end()) {
            std::string allowed;
            for (const std::string_view key : known_) {
                allowed += allowed.empty() ? "" : ", ";
                allowed += quoted(key);
            }
            failure_ = failure_at(file_, member.line, "unknown key " + quoted(member.key) + "; allowed are " + allowed);
        }
    }
}

JsonTree JsonWriter::of(QRX_U64 number)
{
    JsonTree tree;
    tree.kind = JsonTree::Kind::kNumber;
    tree.number = number;
    return tree;
}

JsonTree JsonWriter::of(std::string text)
{
    JsonTree tree;
    tree.kind = JsonTree::Kind::kText;
    tree.text = std::move(text);
    return tree;
}

JsonTree& JsonWriter::add(const char* key, JsonTree value)
{
    object_.members.push_back({key, 0, std::move(value)});
    return object_.members.back().value;
}

void JsonWriter::flag(const char* key, bool value)
{
    JsonTree tree;
    tree.kind = JsonTree::Kind::kFlag;
    tree.flag = value;
    add(key, std::move(tree));
}

void JsonWriter::text(const char* key, const std::string& value, std::size_t /*longest*/, bool /*any*/)
{
    add(key, of(value));
}

void JsonWriter::code(const char* key, QRX_U8 value, std::span<const JsonWord> words)
{
    const JsonWord* const word = find_value(words, value);
    add(key, word != nullptr ? of(std::string(word->word)) : of(QRX_U64{value}));
}

void JsonWriter::add_mask(const char* key, QRX_U64 value, std::span<const JsonWord> words)
{
    JsonTree& list = add(key, {});
    list.kind = JsonTree::Kind::kList;
    for (QRX_U64 bit = 0; bit < 64; ++bit) {
        if ((value >> bit & 1) != 0) {
            const JsonWord* const word = find_value(words, bit);
            list.items.push_back(word != nullptr ? of(std::string(word->word)) : of(bit));
        }
    }
}

void JsonWriter::bytes(const char* key, std::span<const QRX_U8> bytes)
{
    add(key, of(to_hex(bytes)));
}

void JsonWriter::bytes(const char* key, const std::vector<QRX_U8>& bytes, std::size_t /*longest*/)
{
    add(key, of(to_hex(bytes)));
}

void JsonWriter::lines(const char* key, const std::string& value)
{
    JsonTree& list = add(key, {});
    list.kind = JsonTree::Kind::kList;
    std::size_t begin = 0;
    while (begin < value.size()) {
        const std::size_t end = std::min(value.find('\n', begin), value.size());
        list.items.push_back(of(value.substr(begin, end - begin)));
        begin = end + 1;
    }
}

}  // namespace qrx::sim
