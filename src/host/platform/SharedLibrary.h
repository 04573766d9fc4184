#pragma once

#include <string>

namespace cubes::platform {

/// Loads the library file of that path into the process; the system searches a bare name. All symbols are bound at once
/// and are not visible to other libraries. Null when it cannot be loaded.
void* loadLibraryFile(std::string const& path);

/// The system's message for this thread's last failed loadLibraryFile.
std::string loadFailure();

/// The exported symbol of that name; null when there is none.
void* findSymbol(void* library, std::string const& name);

/// The separator of the directories of a search path: ":" or, on Windows, ";".
char searchPathDelimiter();

/// The path of the program or library that contains an address; empty when the system does not know it.
std::string moduleFile(void const* address);

/// The absolute directory of the program or library that this code is linked into, with its delimiter, whatever the
/// working directory has become since; empty when the system does not know it.
std::string ownDirectory();

}
