#pragma once

#include <memory>

/// A shared owning pointer: copies share the object and one count; the object is destroyed when
/// the last copy lets go. An empty pointer stands for an object that could not be had.
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
    /// Lets go of the object; this pointer is empty afterwards.
    void Release() noexcept { object_.reset(); }

private:
    // Shared by contract: that is what this type is.
    std::shared_ptr<Object> object_;
};
