#pragma once

#include <cubes/routestorage/metadata/Counted.h>

namespace Metadata {

/// One value, offered through its interface.
template <typename Value, typename Interface>
class BasicType final : public Counted<Interface> {
public:
    explicit BasicType(Value const& value = Value()) : value_(value) {}

    BasicType* dup() const override { return new BasicType(value_); }
    char const* getClassName() const override { return "BasicType"; }
    Value get() const override { return value_; }
    void set(Value const& value) override { value_ = value; }

private:
    Value value_;
};

}
