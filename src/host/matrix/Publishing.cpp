#include "host/matrix/Publishing.h"

#include "host/platform/Files.h"

#include <cubes/matrix/MatrixStorage.h>

namespace cubes::matrix {

bool isToBeFlushed(std::string const& path) {
    return matrixStorage(platform::directoryOf(path)).durability == Durability::full;
}

void publish(platform::TemporaryFile& temporary) {
    bool const flushed = isToBeFlushed(temporary.target());
    if (flushed) temporary.file().flush();
    temporary.publish();
    if (flushed) platform::flushDirectory(platform::directoryOf(temporary.target()));
}

}
