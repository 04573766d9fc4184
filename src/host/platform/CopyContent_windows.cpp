#include "host/platform/CopyContent.h"

#include "host/platform/Paths.h"
#include "host/platform/SystemFailure.h"

#include <windows.h>

namespace cubes::platform {

// The system copies between names, not between open files.
void copyContent(std::string const& source, File& target) {
    std::string const path = target.path();
    std::wstring const wide = toPath(path).wstring();
    target.close();
    if (!::CopyFileW(toPath(source).wstring().c_str(), wide.c_str(), FALSE)) throwSystemFailure("cannot copy to", path);
    // A copy is read-only where its source is; this one has yet to be flushed and put in place.
    ::SetFileAttributesW(wide.c_str(), FILE_ATTRIBUTE_NORMAL);
    target = File::openShared(path);
}

}
