#include "host/matrix/OmxReader.h"

#include "host/platform/NarrowText.h"

#include <cubes/matrix/MatrixLimits.h>

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace cubes::matrix {

using hdf5::Dataset;
using hdf5::GuardedFile;

namespace {

constexpr std::size_t largestNumber = 16;
constexpr std::size_t alwaysFits = std::size_t{1} << 26;
constexpr std::uint64_t mostElementsUnstored = 1000 * 1000;
constexpr std::int32_t deflateFilter = 1;
constexpr std::int32_t shuffleFilter = 2;
// What the mask of a chunk is where the only filter was skipped.
constexpr unsigned allSkipped = 1;

std::string pathOf(char const* group, std::string const& name) {
    return std::string(group) + "/" + name;
}

template <typename Number>
std::optional<Number> readNumber(GuardedFile const& file, std::string const& object, char const* name) {
    auto const attribute = file.attribute(object, name);
    bool const isOne = attribute && attribute->type.kind == hdf5::TypeClass::integer && attribute->count == 1 &&
                       attribute->value.size() == sizeof(std::int64_t);
    if (!isOne) return std::nullopt;
    std::int64_t number = 0;
    std::memcpy(&number, attribute->value.data(), sizeof number);
    if constexpr (std::is_same_v<Number, std::uint64_t>) return static_cast<std::uint64_t>(number);
    return std::in_range<Number>(number) ? std::optional(static_cast<Number>(number)) : std::nullopt;
}

bool isNumeric(hdf5::StoredType const& type) {
    return type.kind == hdf5::TypeClass::integer || type.kind == hdf5::TypeClass::real;
}

// HDF5 itself does not check the element size in a damaged file.
void requireNumbers(hdf5::StoredType const& type) {
    if (!isNumeric(type) || type.size > largestNumber) throw std::runtime_error("the table's elements are not numbers");
}

void requireTwoDimensions(Dataset const& dataset) {
    if (dataset.dimensions.size() != 2) throw std::runtime_error("the table is not two-dimensional");
}

bool isOurs(GuardedFile const& file, std::string const& table) {
    return file.attribute(table, omx::content) || file.attribute(table, omx::checksum);
}

// Only a table of the library may be large and almost empty: in other files that indicates damage, and reading would
// take very long.
void requireStorage(GuardedFile const& file, std::string const& table, Dataset const& dataset) {
    std::uint64_t const size = file.size();
    std::size_t const elements = elementCount(dataset.dimensions[0], dataset.dimensions[1]);
    bool const fits = elements / hdf5::mostInflation <= size || elements <= alwaysFits || isOurs(file, table);
    if (dataset.storedSize > size || !fits) throw std::runtime_error("the table is larger than the file");
    requireMatrixFits(dataset.dimensions[0], dataset.dimensions[1]);
}

// Whether what a file records is a matrix of zeros. It is not made: it may be as large as it claims.
bool areZeros(FileHeader const& header, RecordedContent const& recorded) {
    if (!recorded.isKnown()) return false;
    std::vector<std::byte> const zeros(std::size_t{1} << 20);
    MatrixHash hash(recorded.hasZones ? header : FileHeader{.rows = header.rows, .columns = header.columns});
    std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> const sum(XXH3_createState(), XXH3_freeState);
    if (!sum) throw std::bad_alloc();
    XXH3_64bits_reset(sum.get());
    auto left = elementCount(static_cast<std::uint64_t>(header.rows), static_cast<std::uint64_t>(header.columns)) *
                sizeof(float);
    while (left > 0) {
        auto const part = std::span(zeros).first(std::min(left, zeros.size()));
        hash.add(part);
        XXH3_64bits_update(sum.get(), part.data(), part.size());
        left -= part.size();
    }
    return recorded.id.isKnown() ? hash.finish() == recorded.id : XXH3_64bits_digest(sum.get()) == recorded.checksum;
}

void requireFilters(std::vector<hdf5::Filter> const& filters) {
    for (auto const& [id, isAvailable] : filters)
        if (!isAvailable)
            throw std::runtime_error(
                "its elements are stored with filter " + std::to_string(id) + ", which is not available here");
}

// Those that the library can reverse itself.
std::optional<Filters> ownFilters(std::vector<hdf5::Filter> const& filters) {
    std::vector<std::int32_t> ids;
    for (auto const& filter : filters) ids.push_back(filter.id);
    if (ids.empty()) return Filters::none;
    if (ids == std::vector{deflateFilter}) return Filters::deflate;
    if (ids == std::vector{shuffleFilter, deflateFilter}) return Filters::shuffleAndDeflate;
    return std::nullopt;
}

// Chunks that together are larger than the file share bytes. A size is expected where chunks have no filters.
void requirePlaces(
    std::vector<ChunkPlace> const& chunks, std::uint64_t fileSize, std::optional<std::uint64_t> expected) {
    std::uint64_t left = fileSize;
    for (ChunkPlace const& chunk : chunks) {
        if (chunk.offset != 0 && chunk.size != expected.value_or(chunk.size))
            throw std::runtime_error("a chunk has the wrong size");
        if (!isWithin({chunk.offset, chunk.size}, fileSize) || chunk.size > left)
            throw std::runtime_error("a chunk is not within the file");
        left -= chunk.size;
    }
}

bool hasDimensions(hdf5::Link const& link, int dimensions) {
    return link.kind == hdf5::LinkKind::dataset && link.dimensions == dimensions;
}

// The names of the datasets with that many dimensions in a group, sorted; none when there is no such group. Links and
// datasets that are stored elsewhere are listed as well; opening them fails.
std::vector<std::string> datasetsOf(GuardedFile const& file, char const* group, int dimensions) {
    std::vector<std::string> names;
    if (!file.exists(group)) return names;
    for (auto const& link : file.links(group))
        if (link.kind == hdf5::LinkKind::elsewhere || hasDimensions(link, dimensions)) names.push_back(link.name);
    return names;
}

constexpr std::array usualNames = {"zone", "zones", "zone_number", "zone number", "zoneid", "zone_id", "no", "taz"};

bool isUsualName(std::string const& name) {
    return std::find(usualNames.begin(), usualNames.end(), platform::asciiLower(name)) != usualNames.end();
}

// Empty when the lookup cannot be chosen.
std::string zoneLookup(std::vector<std::string> const& names) {
    auto const usual = std::find_if(names.begin(), names.end(), isUsualName);
    if (usual != names.end()) return *usual;
    return names.size() == 1 ? names.front() : std::string();
}

std::vector<double> numbersOf(GuardedFile const& file, std::string const& lookup, int rows) {
    Dataset const dataset = file.dataset(lookup);
    std::vector<std::uint64_t> const expected = {static_cast<std::uint64_t>(rows)};
    if (!isNumeric(dataset.type) || dataset.dimensions != expected) return {};
    std::vector<double> numbers(static_cast<std::size_t>(rows));
    file.read(lookup, dataset, hdf5::NumberType::float64, 0, std::as_writable_bytes(std::span(numbers)));
    return numbers;
}

bool isWholeNumber(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    return number >= Limits::min() && number <= Limits::max() && number == std::floor(number);
}

bool areDistinct(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
}

std::vector<std::int32_t> wholeNumbers(std::vector<double> const& numbers) {
    std::vector<std::int32_t> whole;
    for (double const number : numbers) whole.push_back(static_cast<std::int32_t>(number));
    return whole;
}

// The zone numbers in a lookup with one for each row; none when they are no whole numbers.
std::vector<double> zoneNumbers(GuardedFile const& file, std::string const& lookup, int rows) {
    auto numbers = numbersOf(file, pathOf(omx::lookups, lookup), rows);
    return std::ranges::all_of(numbers, isWholeNumber) ? std::move(numbers) : std::vector<double>();
}

// The zone numbers in a file of another program: those of a lookup with a usual name, else of the only lookup. None
// unless they are distinct.
std::vector<std::int32_t> foreignZones(GuardedFile const& file, std::vector<std::string> const& lookups, int rows) {
    std::string const name = zoneLookup(lookups);
    if (name.empty()) return {};
    auto const numbers = zoneNumbers(file, name, rows);
    return areDistinct(numbers) ? wholeNumbers(numbers) : std::vector<std::int32_t>();
}

// Whether there is the lookup whose numbers the content id covers.
bool hasOwnZones(GuardedFile const& file) {
    auto const lookups = datasetsOf(file, omx::lookups, 1);
    return std::ranges::find(lookups, omx::zones) != lookups.end();
}

// The zone numbers of a table. In a file of ours they may repeat, as in the matrix that was saved.
std::vector<std::int32_t> zonesOf(GuardedFile const& file, std::string const& table, FileHeader const& header) {
    if (header.rows != header.columns) return {};
    if (isOurs(file, table) && hasOwnZones(file)) return wholeNumbers(zoneNumbers(file, omx::zones, header.rows));
    return foreignZones(file, datasetsOf(file, omx::lookups, 1), header.rows);
}

platform::File openContent(std::string const& path) {
    auto file = platform::File::openForReading(path);
    if (file.size() == 0) throw std::runtime_error("it is empty");
    return file;
}

}

OmxTable::OmxTable(std::shared_ptr<GuardedFile const> file, std::string const& name)
    : file_(std::move(file)), path_(pathOf(omx::tables, name)), dataset_(file_->dataset(path_)) {
    requireNumbers(dataset_.type);
    requireTwoDimensions(dataset_);
    requireStorage(*file_, path_, dataset_);
    readHeader();
    requireElements();
    readLayout();
}

// Damage that loses the elements would otherwise pass for a matrix of zeros.
void OmxTable::requireElements() const {
    bool const isSmall = dataset_.dimensions[0] * dataset_.dimensions[1] <= mostElementsUnstored;
    if (dataset_.storedSize > 0 || isSmall) return;
    if (!areZeros(header_, recorded()))
        throw std::runtime_error("none of its elements are stored, and more than 1000 x 1000 are not taken for zeros");
}

void OmxTable::readHeader() {
    header_.rows = static_cast<int>(dataset_.dimensions[0]);
    header_.columns = static_cast<int>(dataset_.dimensions[1]);
    if (auto const type = readNumber<std::int32_t>(*file_, path_, omx::type))
        header_.type = static_cast<RkMatrixType>(*type);
    if (auto const kind = readNumber<std::int32_t>(*file_, path_, omx::kind))
        header_.kind = static_cast<RkMatrixKind>(*kind);
    header_.name = hdf5::readText(*file_, path_, omx::name);
    header_.selectedLink = readNumber<std::int32_t>(*file_, path_, omx::selectedLink).value_or(0) != 0;
    header_.zones = zonesOf(*file_, path_, header_);
}

// Single-precision elements in rows are read from the file itself.
void OmxTable::readLayout() {
    bool const isPlaced = dataset_.type.isFloat32 && dataset_.hasPlaces && dataset_.fillsWithZero;
    if (dataset_.layout == hdf5::DatasetLayout::contiguous && isPlaced && dataset_.offset != 0) {
        auto const bytes = bands().chunkSize() * static_cast<std::size_t>(header_.rows) * sizeof(float);
        if (!isWithin({dataset_.offset, bytes}, file_->size())) throw std::runtime_error("it is truncated");
        access_ = Access::contiguous;
    }
    if (dataset_.layout != hdf5::DatasetLayout::chunked) return;
    auto const rows = static_cast<std::uint64_t>(header_.rows);
    bandRows_ = static_cast<int>(std::clamp<std::uint64_t>(dataset_.chunk[0], 1, rows));
    requireFilters(dataset_.filters);
    bool const isOfRows = dataset_.chunk == std::vector{static_cast<std::uint64_t>(bandRows_), dataset_.dimensions[1]};
    auto const filters = ownFilters(dataset_.filters);
    if (isPlaced && isOfRows && filters) readChunks(*filters);
}

void OmxTable::readChunks(Filters filters) {
    chunks_ = file_->chunks(path_, bands().count());
    std::uint64_t const whole = bands().chunkSize() * sizeof(float);
    requirePlaces(chunks_, file_->size(), filters == Filters::none ? std::optional(whole) : std::nullopt);
    filters_ = filters;
    access_ = Access::chunks;
}

RecordedContent OmxTable::recorded() const {
    RecordedContent recorded;
    if (file_->exists(hdf5::IndexRecord::dataset))
        recorded.id = hdf5::Id128::parse(hdf5::readText(*file_, path_, omx::content)).value_or(hdf5::Id128{});
    recorded.checksum = readNumber<std::uint64_t>(*file_, path_, omx::checksum);
    recorded.hasZones = hasOwnZones(*file_);
    return recorded;
}

// Reads the rows from `first` up to, not including, `behind`, to their place among all elements.
void OmxTable::readRows(int first, int behind, float* all) const {
    auto const columns = static_cast<std::size_t>(header_.columns);
    auto const before = static_cast<std::size_t>(first) * columns;
    auto const count = static_cast<std::size_t>(behind - first) * columns;
    auto const to = std::as_writable_bytes(std::span(all + before, count));
    if (access_ == Access::contiguous) return file_->file().readAt(dataset_.offset + before * sizeof(float), to);
    file_->read(path_, dataset_, hdf5::NumberType::float32, static_cast<std::uint64_t>(first), to);
}

void OmxTable::readBand(std::size_t band, float* all) const {
    if (access_ != Access::chunks) {
        int const first = bands().firstRow(band);
        return readRows(first, first + std::min(bandRows_, header_.rows - first), all);
    }
    BlockDecoder decoder(filters_);
    decode(decoder, band, all);
}

void OmxTable::readAllBut(std::optional<std::size_t> done, float* all) const {
    if (access_ == Access::chunks)
        return inflateAllBut(
            done, bands(), filters_, [&](BlockDecoder& decoder, std::size_t band) { decode(decoder, band, all); });
    if (!done) return readRows(0, header_.rows, all);
    int const first = bands().firstRow(*done);
    readRows(0, first, all);
    readRows(first + std::min(bandRows_, header_.rows - first), header_.rows, all);
}

void OmxTable::decode(BlockDecoder& decoder, std::size_t band, float* all) const {
    auto const& [offset, size, skipped] = chunks_[band];
    if (offset == 0) return;
    std::vector<std::byte> stored(size);
    file_->file().readAt(offset, stored);
    inflateBand(
        decoder, bands(), band, stored, filters_ == Filters::none ? allSkipped : static_cast<unsigned>(skipped), all);
}

OmxReader::OmxReader(std::string const& path) : file_(std::make_shared<GuardedFile const>(openContent(path))) {}

std::vector<std::string> OmxReader::tables() const {
    return datasetsOf(*file_, omx::tables, 2);
}

std::vector<std::string> OmxReader::lookups() const {
    return datasetsOf(*file_, omx::lookups, 1);
}

OmxTable OmxReader::table(std::string const& name) const {
    auto const known = tables();
    if (std::find(known.begin(), known.end(), name) == known.end())
        throw std::runtime_error("it has no table \"" + name + "\"");
    return {file_, name};
}

OmxTable OmxReader::onlyTable() const {
    auto const known = tables();
    if (std::find(known.begin(), known.end(), omx::table) != known.end()) return table(omx::table);
    if (known.empty()) throw std::runtime_error("it has no table under /data");
    if (known.size() > 1)
        throw std::runtime_error("it has " + std::to_string(known.size()) + " tables and none is named \"matrix\"");
    return table(known.front());
}

}
