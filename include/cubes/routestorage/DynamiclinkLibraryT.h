#pragma once

#include <cubes/Export.h>

#include <cstdint>
#include <exception>
#include <string>

/// A run-time library that cannot be loaded. Thrown by value.
class CUBES_API DllNotLoaded : public std::exception {
public:
    explicit DllNotLoaded(std::string library);
    DllNotLoaded(DllNotLoaded const&);
    DllNotLoaded& operator=(DllNotLoaded const&);
    ~DllNotLoaded() override;

    /// "Dll routeprovider64.dll not loaded". Valid until the next call.
    char const* what() const noexcept override;

    /// Why, for the user: "routeprovider64.dll was looked for in A, B and the system's library
    /// directories; the loader says: ...". Searches again for that, from the current environment.
    std::string Reason() const;

private:
    std::string library_;
    mutable std::string message_;
};

namespace Pattern {

/// Keeps a loaded library in the process until it ends.
///
/// A library is loaded from the first directory of the environment variable CUBES_PROVIDER_PATH
/// (separated by ":", on Windows by ";"; read at each load) that contains a file of its name, or
/// from the directory of this library, or from where the system finds libraries.
struct CUBES_API DllNoUnloadpolicyA {
    /// Null when it cannot be loaded.
    static void* load(std::string const& library);
    /// Null when the module does not export that name.
    static void* find(void* module, std::string const& name);
    /// Does nothing.
    static void unload(void* /*module*/) noexcept {}
};

/// A library loaded at run time. The policy decides where it is searched and when it is unloaded.
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

    /// Finds the exported procedure of that name, or of the name with a leading or a trailing
    /// underscore. False, and null, when there is none. `Procedure`: a function type.
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
