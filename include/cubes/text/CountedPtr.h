#pragma once

#include <memory>

/// A shared owning pointer: copies share the object, and the last one destroys it. An empty pointer means that the
/// object does not exist or could not be opened.
template <typename Object>
class CountedPtr {
public:
    CountedPtr() = default;
    /// Takes ownership of `object`.
    explicit CountedPtr(Object* object) : object_(object) {}
    CountedPtr(std::unique_ptr<Object> object) : object_(std::move(object)) {}

    /// REQUIRES: not empty.
    Object* operator->() const noexcept { return object_.get(); }
    /// REQUIRES: not empty.
    Object& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// Releases the object; this pointer is empty afterwards.
    void Release() noexcept { object_.reset(); }

private:
    std::shared_ptr<Object> object_;
};
