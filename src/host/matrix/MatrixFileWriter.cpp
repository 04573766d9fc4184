#include "host/matrix/MatrixFileWriter.h"

#include "host/matrix/DeflateStorage.h"
#include "host/matrix/Failure.h"
#include "host/matrix/PlainStorage.h"
#include "host/platform/Paths.h"

#include <cubes/matrix/MatrixStorage.h>

namespace cubes::matrix {

namespace {

std::string directoryOf(std::string const& path) {
    auto const directory = platform::toPath(path).parent_path();
    return directory.empty() ? "." : platform::fromPath(directory);
}

auto writerOf(Storage storage) {
    return storage == Storage::deflate ? &writeDeflate : &writePlain;
}

}

FileHeader fileHeader(TRkMatrixHeader const& header) {
    return {header.Rows(), header.Columns(), header.Type(), static_cast<RkMatrixKind>(header.Kind()),
        header.Name().str(), header.Zones()};
}

void writeMatrixFile(platform::TemporaryFile& temporary, std::string const& target, std::string const& table,
    FileHeader const& header, float const* elements) {
    describingFailure("cannot write matrix file", target, [&] {
        std::string const directory = directoryOf(target);
        MatrixStorage const rule = matrixStorage(directory);
        writerOf(header.selectedLink ? Storage::deflate : rule.storage)(temporary.file(), table, header, elements);
        if (rule.durability == Durability::full) temporary.file().flush();
        temporary.publish();
        if (rule.durability == Durability::full) platform::flushDirectory(directory);
    });
}

}
