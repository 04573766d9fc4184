#pragma once

#include <cubes/routestorage/DynamiclinkLibraryT.h>

namespace VL::Interface {

/// An object that the route-storage provider made for one route file; given up at the end of this
/// one. Loads the library "routeprovider64.dll".
template <typename Provided>
class ProvidedObjectT : public Pattern::DynamiclinkLibraryT<Pattern::DllNoUnloadpolicyA> {
public:
    ~ProvidedObjectT() override {
        if (object_) object_->release();
    }

    /// The object, without a reference; null when the provider does not make such objects.
    Provided* getInterface() const noexcept { return object_; }

protected:
    using Factory = Provided*(char const* fileName);

    /// Throws DllNotLoaded.
    ProvidedObjectT() : DynamiclinkLibraryT("routeprovider64.dll") {}

    void own(Provided* object) noexcept { object_ = object; }
    /// What the exported factory makes, which the caller has to give up; null without a factory.
    Provided* make(char const* factory, char const* fileName) {
        if (!factory_) getProcedure(factory, factory_);
        return factory_ ? factory_(fileName) : nullptr;
    }

private:
    Factory* factory_ = nullptr;
    Provided* object_ = nullptr;
};

}
