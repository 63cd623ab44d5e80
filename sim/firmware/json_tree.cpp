#include "sim/firmware/json_tree.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

namespace qrx::sim {

namespace {

constexpr std::size_t kMaxDepth = 16;

// Walks over the text for the parser, and counts lines on the way. The parser reads at most one letter past a token,
// and a line's break belongs to that line, so `line` is the line on which the latest token ends.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    struct Position {
        unsigned line = 1;
        bool line_ended = false;
    };

    CountingIterator(const char* at, Position* position) : at_(at), position_(position) {}

    reference operator*() const { return *at_; }
    CountingIterator& operator++()
    {
        if (position_->line_ended) {
            ++position_->line;
        }
        position_->line_ended = *at_ == '\n';
        ++at_;
        return *this;
    }
    friend bool operator==(const CountingIterator& left, const CountingIterator& right)
    {
        return left.at_ == right.at_;
    }

private:
    const char* at_;
    Position* position_;
};

// Builds the tree as the parser meets its pieces.
class Builder : public nlohmann::json_sax<nlohmann::json> {
public:
    Builder(std::string_view file, const CountingIterator::Position& position) : file_(file), position_(position) {}

    bool null() override { return add(make(JsonTree::Kind::kNull)); }
    bool boolean(bool value) override
    {
        JsonTree tree = make(JsonTree::Kind::kFlag);
        tree.flag = value;
        return add(std::move(tree));
    }
    bool number_integer(number_integer_t /*value*/) override { return add(make(JsonTree::Kind::kOtherNumber)); }
    bool number_unsigned(number_unsigned_t value) override
    {
        JsonTree tree = make(JsonTree::Kind::kNumber);
        tree.number = value;
        return add(std::move(tree));
    }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override
    {
        return add(make(JsonTree::Kind::kOtherNumber));
    }
    bool string(string_t& value) override
    {
        JsonTree tree = make(JsonTree::Kind::kText);
        tree.text = std::move(value);
        return add(std::move(tree));
    }
    bool binary(binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*elements*/) override { return open(JsonTree::Kind::kObject); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t /*elements*/) override { return open(JsonTree::Kind::kList); }
    bool end_array() override { return close(); }
    bool key(string_t& value) override
    {
        JsonTree& object = open_.back();
        if (object.find(value) != nullptr) {
            return fail("the key '" + value + "' occurs twice");
        }
        object.members.push_back({value, position_.line, {}});
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& error) override
    {
        // What the parser says begins with its own name for the fault and the place.
        const std::string text = error.what();
        const std::size_t syntax = text.find("syntax error");
        const std::size_t bracket = text.find("] ");
        const std::size_t begin = syntax != std::string::npos ? syntax : bracket != std::string::npos ? bracket + 2 : 0;
        return fail("not valid JSON: " + text.substr(begin));
    }

    [[nodiscard]] Result<JsonTree> take()
    {
        if (!error_.text.empty()) {
            return error_;
        }
        return std::move(root_);
    }

private:
    [[nodiscard]] JsonTree make(JsonTree::Kind kind) const
    {
        JsonTree tree;
        tree.kind = kind;
        tree.line = position_.line;
        return tree;
    }
    bool add(JsonTree tree)
    {
        if (open_.empty()) {
            root_ = std::move(tree);
        } else if (open_.back().kind == JsonTree::Kind::kList) {
            open_.back().items.push_back(std::move(tree));
        } else {
            open_.back().members.back().value = std::move(tree);
        }
        return true;
    }
    bool open(JsonTree::Kind kind)
    {
        if (open_.size() == kMaxDepth) {
            return fail("nested too deeply");
        }
        open_.push_back(make(kind));
        return true;
    }
    bool close()
    {
        JsonTree tree = std::move(open_.back());
        open_.pop_back();
        return add(std::move(tree));
    }
    bool fail(const std::string& text)
    {
        if (error_.text.empty()) {
            error_ = failure_at(file_, position_.line, text);
        }
        return false;
    }

    std::string_view file_;
    const CountingIterator::Position& position_;
    std::vector<JsonTree> open_;  // the lists and objects that the parser is in
    JsonTree root_;
    Failure error_;
};

nlohmann::ordered_json to_library(const JsonTree& tree)
{
    switch (tree.kind) {
    case JsonTree::Kind::kFlag:
        return tree.flag;
    case JsonTree::Kind::kNumber:
        return tree.number;
    case JsonTree::Kind::kText:
        return tree.text;
    case JsonTree::Kind::kList: {
        auto list = nlohmann::ordered_json::array();
        for (const JsonTree& item : tree.items) {
            list.push_back(to_library(item));
        }
        return list;
    }
    case JsonTree::Kind::kObject: {
        auto object = nlohmann::ordered_json::object();
        for (const JsonTree::Member& member : tree.members) {
            object[member.key] = to_library(member.value);
        }
        return object;
    }
    default:
        return nullptr;
    }
}

}  // namespace

const char* JsonTree::kind_name() const
{
    switch (kind) {
    case Kind::kNull:
        return "null";
    case Kind::kFlag:
        return "true or false";
    case Kind::kNumber:
        return "a number";
    case Kind::kOtherNumber:
        return "a number that is negative, broken or too large";
    case Kind::kText:
        return "a text";
    case Kind::kList:
        return "a list";
    default:
        return "an object";
    }
}

const JsonTree::Member* JsonTree::find(std::string_view key) const
{
    const auto found =
        std::find_if(members.begin(), members.end(), [key](const Member& member) { return member.key == key; });
    return found == members.end() ? nullptr : &*found;
}

Failure failure_at(std::string_view file, unsigned line, std::string_view text)
{
    std::string message(file);
    message += ':';
    message += std::to_string(line);
    message += ": ";
    message += text;
    return {message};
}

Result<JsonTree> parse_json(std::string_view text, std::string_view file)
{
    CountingIterator::Position position;
    Builder builder(file, position);
    nlohmann::json::sax_parse(CountingIterator(text.data(), &position),
                              CountingIterator(text.data() + text.size(), &position), &builder);
    return builder.take();
}

std::string print_json(const JsonTree& tree)
{
    return to_library(tree).dump(2, ' ', true) + "\n";
}

}  // namespace qrx::sim
