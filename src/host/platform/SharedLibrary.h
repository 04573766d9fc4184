#pragma once

#include <string>

namespace cubes::platform {

/// Loads a shared library into the process: from the first directory of CUBES_PROVIDER_PATH that
/// holds a file of that name, else from where this library itself lies, else as the system looks
/// for libraries. It is bound at once and adds no symbols to those of others. Null when there is
/// none, or the one that was found cannot be loaded.
void* loadLibrary(std::string const& name);

/// What the library exports under that name; null when there is no such thing.
void* findSymbol(void* library, std::string const& name);

/// Between the directories of a search path: ":" or, on Windows, ";".
char searchPathDelimiter();

/// The directory that this code lies in, with its delimiter; empty when the system cannot tell.
std::string ownDirectory();

/// Loads the file of that path; a bare name is looked for by the system. Null when it cannot.
void* loadLibraryFile(std::string const& path);

}
