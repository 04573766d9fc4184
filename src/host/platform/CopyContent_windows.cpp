#include "host/platform/CopyContent.h"

#include "host/platform/Paths.h"
#include "host/platform/SystemFailure.h"

#include <windows.h>

namespace cubes::platform {

// The system copies between names, not between open files.
void copyContent(std::string const& source, File& target) {
    // What is wrong with the source is told of the source.
    File const original = File::openForReading(source);
    std::string const path = target.path();
    auto const copy = toPath(path);
    target.close();
    if (!::CopyFileW(toPath(source).c_str(), copy.c_str(), FALSE)) throwSystemFailure("cannot copy to", path);
    // A copy is read-only where its source is; this one has yet to be flushed and put in place.
    ::SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
    target = File::openShared(path);
}

}
