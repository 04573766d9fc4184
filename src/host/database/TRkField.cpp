#include <cubes/database/TRkField.h>

#include "host/database/Conversion.h"
#include "host/database/Cursor.h"
#include "host/database/Session.h"

namespace Rktable {

long TRkField::AsInteger() const {
    auto const held = cursor_->session().lock();
    Value const& value = cursor_->value(column_);
    if (value.IsNumber()) return static_cast<long>(value.Number());
    return value.IsText() ? static_cast<long>(cubes::database::leadingNumber(value.Text())) : 0;
}

void TRkField::SetAsInteger(long number) {
    auto const held = cursor_->session().lock();
    cursor_->setValue(column_, number);
}

TRkString TRkField::AsString() const {
    auto const held = cursor_->session().lock();
    Value const& value = cursor_->value(column_);
    if (value.IsText()) return TRkString(value.Text());
    return value.IsNumber() ? TRkString(value.Number()) : TRkString();
}

void TRkField::SetAsString(char const* text) {
    auto const held = cursor_->session().lock();
    cursor_->setValue(column_, text);
}

bool TRkField::IsNull() const {
    auto const held = cursor_->session().lock();
    return cursor_->value(column_).IsNull();
}

void TRkField::Clear() {
    auto const held = cursor_->session().lock();
    cursor_->setValue(column_, {});
}

TRkString TRkField::Stored(char const* text) const {
    return TRkString(std::string(cubes::database::cut(text ? text : "", cursor_->column(column_))));
}

int TRkField::Size() const noexcept {
    return static_cast<int>(cursor_->column(column_).size);
}

std::string const& TRkField::Name() const noexcept {
    return cursor_->column(column_).name;
}

}
