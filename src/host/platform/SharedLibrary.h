#pragma once

#include <string>

namespace cubes::platform {

/// Loads the library file of that path into the process; a bare name is searched by the system. It
/// is bound at once and adds no symbols to those of others. Null when it cannot be loaded.
void* loadLibraryFile(std::string const& path);

/// The system's message for this thread's last loadLibraryFile, which failed.
std::string loadFailure();

/// What the library exports under that name; null when there is no such name.
void* findSymbol(void* library, std::string const& name);

/// Between the directories of a search path: ":" or, on Windows, ";".
char searchPathDelimiter();

/// The path of the program or library that contains an address; empty when the system does not know it.
std::string moduleFile(void const* address);

/// The directory of the program or library that this code is linked into, with its delimiter; empty
/// when the system does not know it.
std::string ownDirectory();

}
