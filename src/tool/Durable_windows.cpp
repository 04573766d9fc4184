#include "tool/Durable.h"

#include <fcntl.h>
#include <io.h>

namespace cubes::tool {

// Directories cannot be opened here; the system keeps their names in its journal.
void flushToDisk(std::string const& path) {
    int const file = ::_open(path.c_str(), _O_RDWR | _O_BINARY);
    if (file < 0) return;
    ::_commit(file);
    ::_close(file);
}

}
