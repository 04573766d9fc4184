#include "host/matrix/MatrixFileWriter.h"

#include "host/matrix/DeflateStorage.h"
#include "host/matrix/Failure.h"
#include "host/matrix/PlainStorage.h"
#include "host/matrix/Publishing.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"

#include <cubes/matrix/MatrixStorage.h>

namespace cubes::matrix {

namespace {

auto writerOf(Storage storage) {
    return storage == Storage::deflate ? &writeDeflate : &writePlain;
}

}

FileHeader fileHeader(TRkMatrixHeader const& header) {
    return {header.Rows(), header.Columns(), header.Type(), static_cast<RkMatrixKind>(header.Kind()),
        platform::toUtf8(header.Name().str()), header.Zones()};
}

void writeMatrixFile(platform::TemporaryFile& temporary, std::string const& target, std::string const& table,
    FileHeader const& header, float const* elements) {
    describingFailure("cannot write matrix file", target, [&] {
        Storage const asked = matrixStorage(platform::directoryOf(target)).storage;
        writerOf(header.selectedLink ? Storage::deflate : asked)(temporary.file(), table, header, elements);
        publish(temporary);
    });
}

}
