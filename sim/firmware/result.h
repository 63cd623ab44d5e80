// A value, or the text of what went wrong.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace qrx::sim {

struct Failure {
    std::string text;
};

template <class Value>
class Result {
public:
    Result(Value value) : content_(std::move(value)) {}
    Result(Failure failure) : content_(std::move(failure)) {}

    [[nodiscard]] explicit operator bool() const { return content_.index() == 0; }
    // The value. There must be one.
    [[nodiscard]] Value& operator*() { return std::get<0>(content_); }
    [[nodiscard]] const Value& operator*() const { return std::get<0>(content_); }
    [[nodiscard]] Value* operator->() { return &std::get<0>(content_); }
    [[nodiscard]] const Value* operator->() const { return &std::get<0>(content_); }
    // What went wrong; empty when there is a value.
    [[nodiscard]] std::string error() const { return *this ? std::string() : std::get<1>(content_).text; }

private:
    std::variant<Value, Failure> content_;
};

}  // namespace qrx::sim
