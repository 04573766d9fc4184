#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

#include <string>
#include <utility>
#include <variant>

namespace Rktable {

/// A value of a column or of a look-up: null, a whole number or a text.
class CUBES_API Value {
public:
    /// Null.
    Value() = default;
    template <cubes::WholeNumber Number>
    Value(Number number) : content_(static_cast<long long>(number)) {}
    /// A null pointer gives null.
    Value(char const* text) {
        if (text) content_ = std::string(text);
    }
    Value(std::string text) : content_(std::move(text)) {}

    bool IsNull() const noexcept { return content_.index() == 0; }
    bool IsNumber() const noexcept { return content_.index() == 1; }
    bool IsText() const noexcept { return content_.index() == 2; }
    /// REQUIRES: IsNumber().
    long long Number() const { return std::get<1>(content_); }
    /// REQUIRES: IsText().
    std::string const& Text() const { return std::get<2>(content_); }

    friend bool operator==(Value const&, Value const&) = default;

private:
    std::variant<std::monostate, long long, std::string> content_;
};

}
