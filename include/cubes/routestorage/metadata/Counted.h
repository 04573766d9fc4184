#pragma once

#include <cstring>

namespace Metadata {

/// What all classes of descriptions do alike. Made with new.
template <typename Interface>
class Counted : public Interface {
public:
    Counted() = default;
    virtual ~Counted() = default;
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;

    void addRef() final { ++references_; }
    long release() final {
        long const left = --references_;
        if (left < 1) delete this;
        return left;
    }
    /// 1.
    long version() const final { return 1; }
    bool hasA(char const* name) const final { return isA(name); }
    bool isA(char const* name) const final {
        return name &&
               (std::strcmp(name, this->getClassName()) == 0 || std::strcmp(name, Interface::InterfaceName) == 0);
    }

private:
    long references_ = 1;
};

}
