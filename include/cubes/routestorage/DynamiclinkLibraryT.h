#pragma once

#include <cubes/routestorage/DllNoUnloadpolicyA.h>
#include <cubes/routestorage/DllNotLoaded.h>

#include <cstdint>
#include <string>

namespace Pattern {

/// A library loaded at run time. The policy tells where it is looked for and when it is unloaded.
/// Not copyable: each handle loads the library itself.
template <typename UnloadPolicy>
class DynamiclinkLibraryT {
public:
    /// Throws DllNotLoaded.
    explicit DynamiclinkLibraryT(std::string library)
        : library_(std::move(library)), module_(UnloadPolicy::load(library_)) {
        if (!module_) throw DllNotLoaded(library_);
    }
    virtual ~DynamiclinkLibraryT() {
        if (loadCount_ > 0) --loadCount_;
        UnloadPolicy::unload(module_);
    }
    DynamiclinkLibraryT(DynamiclinkLibraryT const&) = delete;
    DynamiclinkLibraryT& operator=(DynamiclinkLibraryT const&) = delete;

    /// Gives the exported procedure of that name, or of the name with an underscore in front, or
    /// behind. False, and null, when there is none. `Procedure`: the type of a function.
    template <typename Procedure>
    bool getProcedure(std::string name, Procedure*& procedure) const {
        return getProcedureFromLibrary(name, procedure);
    }
    template <typename Procedure>
    bool getProcedureFromLibrary(std::string const& name, Procedure*& procedure) const {
        procedure = nullptr;
        for (std::string const& variant : {name, "_" + name, name + "_"})
            if (!procedure) procedure = reinterpret_cast<Procedure*>(UnloadPolicy::find(module_, variant));
        return procedure;
    }

private:
    std::string library_;
    void* module_;
    std::uint32_t loadCount_ = 1;
};

}
