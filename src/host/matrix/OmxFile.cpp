#include <cubes/matrix/OmxFile.h>

#include "host/matrix/Elements.h"
#include "host/matrix/Failure.h"
#include "host/matrix/OmxReader.h"
#include "host/matrix/StagedFile.h"

#include <array>
#include <exception>
#include <stdexcept>

namespace cubes {

using matrix::describingFailure;
using matrix::OmxReader;
using matrix::OmxTable;

namespace {

template <typename Work>
auto reading(std::string const& path, Work const& work) {
    return describingFailure("cannot read OMX file", path, work);
}

TRkMatrix matrixIn(OmxTable const& table) {
    TRkMatrix result = TRkMatrix::inMemory(table.header().rows, table.header().columns);
    table.readAll(result.RowAt(0, 0));
    result.MatrixKind(table.header().kind.value_or(mkDefault));
    result.SetZones(table.header().zones);
    return result;
}

void requireTableName(std::string const& name) {
    if (name.empty() || name == "." || name.find('/') != std::string::npos)
        throw std::runtime_error("\"" + name + "\" is not a valid name of a table");
}

}

OmxFile::OmxFile(std::string path, std::unique_ptr<OmxReader> reader)
    : path_(std::move(path)), reader_(std::move(reader)) {}

OmxFile::OmxFile(OmxFile&&) noexcept = default;
OmxFile& OmxFile::operator=(OmxFile&&) noexcept = default;
OmxFile::~OmxFile() = default;

bool OmxFile::mayBe(std::string const& path) noexcept {
    try {
        std::array<std::byte, 8> beginning{};
        platform::File::openForReading(path).readAt(0, beginning);
        return hdf5::beginsAsHdf5(beginning);
    } catch (std::exception const&) {
        return false;
    }
}

OmxFile OmxFile::open(std::string const& path) {
    return reading(path, [&] { return OmxFile(path, std::make_unique<OmxReader>(path)); });
}

std::vector<std::string> OmxFile::tables() const {
    return reading(path_, [this] { return reader_->tables(); });
}

std::vector<std::string> OmxFile::lookups() const {
    return reading(path_, [this] { return reader_->lookups(); });
}

TRkMatrix OmxFile::read(std::string const& table) const {
    return reading(path_, [&] { return matrixIn(reader_->table(table)); });
}

TRkMatrix OmxFile::readVerified(std::string const& table) const {
    return reading(path_, [&] {
        OmxTable const source = reader_->table(table);
        TRkMatrix result = matrixIn(source);
        if (!source.recorded().agreesWith(source.header(), result.Elements().data()))
            throw std::runtime_error(matrix::reasonOfDamage("table \"" + table + "\""));
        return result;
    });
}

bool OmxFile::isIntact(std::string const& table) const {
    return reading(path_, [&] {
        OmxTable const source = reader_->table(table);
        auto const recorded = source.recorded();
        return !recorded.isKnown() || recorded.agreesWith(source.header(), matrixIn(source).Elements().data());
    });
}

void OmxFile::write(std::string const& path, std::string const& table, TRkMatrix const& matrix) {
    constexpr char const* action = "cannot write OMX file";
    describingFailure(action, path, [&] {
        requireTableName(table);
        if (!matrix.IsIntact()) throw std::runtime_error(matrix::reasonOfDamage(matrix.FileName()));
        matrix::replaceMatrixFile(path,
            {.header = matrix::fileHeader(matrix.Header()), .elements = matrix.Elements().data(), .table = table},
            action);
    });
}

}
