#pragma once

#include <atomic>

namespace cubes::routes {

/// What crosses the border counts its references, from 0: whoever gets it from a factory gives it
/// up with one release, which frees it unless others took references in between.
template <typename Interface>
class Counted : public Interface {
public:
    Counted() = default;
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;

    void addRef() final { ++references_; }
    long release() final {
        long const left = --references_;
        if (left < 1) delete this;
        return left;
    }

protected:
    virtual ~Counted() = default;

private:
    std::atomic<long> references_ = 0;
};

}
