#pragma once

#include <cubes/Export.h>

#include <exception>
#include <string>

/// A run-time library that cannot be loaded. Thrown by value.
class CUBES_API DllNotLoaded : public std::exception {
public:
    explicit DllNotLoaded(std::string library);
    DllNotLoaded(DllNotLoaded const&);
    DllNotLoaded& operator=(DllNotLoaded const&);
    ~DllNotLoaded() override;

    /// "Dll routeprovider64.dll not loaded". The text holds until the next call.
    char const* what() const noexcept override;

private:
    std::string library_;
    mutable std::string message_;
};
