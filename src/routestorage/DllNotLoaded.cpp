#include <cubes/routestorage/DllNotLoaded.h>

DllNotLoaded::DllNotLoaded(std::string library) : library_(std::move(library)) {}

DllNotLoaded::DllNotLoaded(DllNotLoaded const&) = default;
DllNotLoaded& DllNotLoaded::operator=(DllNotLoaded const&) = default;
DllNotLoaded::~DllNotLoaded() = default;

char const* DllNotLoaded::what() const noexcept {
    message_ = "Dll " + library_ + " not loaded";
    return message_.c_str();
}
