#include "host/hdf5/IndexRecord.h"

#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <sstream>

namespace cubes::hdf5 {

namespace {

static_assert(std::endian::native == std::endian::little, "records are written as they are in memory");

constexpr std::array<char, 8> magic = {'C', 'U', 'B', 'E', 'I', 'D', 'X', '2'};
constexpr std::uint32_t version = 1;
// HDF5 writes the record after its own structure, near the beginning.
constexpr std::size_t searched = 8192;
constexpr std::size_t mostParts = 6;
constexpr std::size_t longestCube = 192;

// The record as it is stored in the file; docs/matrix-file.md has the same table.
struct Layout {
    std::array<char, 8> magic;
    std::uint64_t checksum;
    std::uint32_t version;
    std::uint32_t holds;
    Id128 content;
    Id128 provenance;
    Id128 directory;
    std::int32_t cubeNumber;
    std::uint32_t parts;
    std::array<std::int32_t, mostParts> key;
    std::uint32_t cubeLength;
    std::uint32_t reserved;
    std::array<char, longestCube> cube;
    std::uint64_t structure;
    std::uint64_t fileSize;
    std::array<std::byte, IndexRecord::detailBytes> details;
};
static_assert(sizeof(Layout) == IndexRecord::bytes);

std::uint64_t checksumOf(Layout const& layout) {
    auto const behind = std::as_bytes(std::span(&layout, 1)).subspan(offsetof(Layout, version));
    return XXH3_64bits(behind.data(), behind.size());
}

// Cut before a whole character: continuation bytes are 10xxxxxx.
std::size_t fittingLength(std::string_view utf8) {
    if (utf8.size() <= longestCube) return utf8.size();
    std::size_t length = longestCube;
    while (length > 0 && (static_cast<unsigned char>(utf8[length]) & 0xC0u) == 0x80u) --length;
    return length;
}

FileStamp stampOf(Layout const& layout) {
    return {layout.directory, std::string(layout.cube.data(), layout.cubeLength), layout.cubeNumber,
        {layout.key.begin(), layout.key.begin() + layout.parts}};
}

bool holds(Layout const& layout) {
    return layout.magic == magic && layout.version == version && layout.checksum == checksumOf(layout) &&
           layout.parts <= mostParts && layout.cubeLength <= longestCube;
}

std::optional<IndexRecord> decode(std::span<std::byte const> bytes) {
    Layout layout;
    std::memcpy(&layout, bytes.data(), sizeof layout);
    if (!holds(layout)) return std::nullopt;
    return IndexRecord{static_cast<IndexRecord::Holds>(layout.holds), layout.content, layout.provenance,
        stampOf(layout), layout.structure, layout.fileSize, layout.details};
}

}

std::string Id128::text() const {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (unsigned const byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15u];
    }
    return text;
}

std::optional<Id128> Id128::parse(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    Id128 id;
    if (text.size() != 2 * id.bytes.size()) return std::nullopt;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t const digit = digits.find(text[i]);
        if (digit == std::string_view::npos) return std::nullopt;
        id.bytes[i / 2] = static_cast<std::uint8_t>(std::size_t{id.bytes[i / 2]} << 4 | digit);
    }
    return id;
}

struct ContentHash::State {
    XXH3_state_t hash;
};

ContentHash::ContentHash() : state_(std::make_unique<State>()) {
    XXH3_128bits_reset(&state_->hash);
}

ContentHash::~ContentHash() = default;

void ContentHash::add(std::span<std::byte const> bytes) {
    XXH3_128bits_update(&state_->hash, bytes.data(), bytes.size());
}

Id128 ContentHash::id() const {
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(&state_->hash));
    return {std::to_array(canonical.digest)};
}

std::array<std::byte, IndexRecord::bytes> encode(IndexRecord const& record) {
    auto const& stamp = record.stamp;
    if (stamp.key.size() > mostParts) throw std::length_error("a key has at most 6 parts");
    Layout layout{};
    layout.magic = magic;
    layout.version = version;
    layout.holds = static_cast<std::uint32_t>(record.holds);
    layout.content = record.content;
    layout.provenance = record.provenance;
    layout.directory = stamp.directory;
    layout.cubeNumber = stamp.cubeNumber;
    layout.parts = static_cast<std::uint32_t>(stamp.key.size());
    std::copy(stamp.key.begin(), stamp.key.end(), layout.key.begin());
    layout.cubeLength = static_cast<std::uint32_t>(fittingLength(stamp.cube));
    std::copy_n(stamp.cube.begin(), layout.cubeLength, layout.cube.begin());
    layout.structure = record.structure;
    layout.fileSize = record.fileSize;
    layout.details = record.details;
    layout.checksum = checksumOf(layout);
    return std::bit_cast<std::array<std::byte, IndexRecord::bytes>>(layout);
}

std::uint64_t writeRecord(hid_t file, std::optional<IndexRecord> const& record) {
    return writeBytes(
        file, IndexRecord::dataset, record ? encode(*record) : std::array<std::byte, IndexRecord::bytes>{});
}

std::optional<FoundRecord> findRecord(std::span<std::byte const> file) {
    std::size_t const end = std::min(file.size(), searched);
    for (std::size_t offset = 0; offset + IndexRecord::bytes <= end; offset += sizeof magic) {
        if (std::memcmp(file.data() + offset, magic.data(), sizeof magic) != 0) continue;
        if (auto record = decode(file.subspan(offset))) return FoundRecord{offset, std::move(*record)};
    }
    return std::nullopt;
}

std::optional<FoundRecord> findRecord(platform::File const& file) {
    std::vector<std::byte> beginning(static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), searched)));
    file.readAt(0, beginning);
    return findRecord(beginning);
}

bool beginsAsHdf5(std::span<std::byte const> beginning) {
    constexpr std::string_view signature = "\x89HDF\r\n\x1a\n";
    auto const expected = std::as_bytes(std::span(signature));
    return beginning.size() >= expected.size() && std::ranges::equal(beginning.first(expected.size()), expected);
}

std::string reasonOfDamage(std::string_view subject) {
    return std::string(subject) + " was changed outside Cubes or damaged: its content does not match its checksum";
}

bool hasRecordAt(GuardedFile const& file, std::uint64_t offset) {
    auto const isRecord = [](Link const& link) {
        return link.name == IndexRecord::dataset && link.kind == LinkKind::dataset;
    };
    return std::ranges::any_of(file.links(""), isRecord) && file.dataset(IndexRecord::dataset).offset == offset;
}

bool restamp(platform::File& file, FileStamp const& stamp) {
    auto found = findRecord(file);
    if (!found) return false;
    found->record.stamp = stamp;
    file.writeAt(found->offset, encode(found->record));
    return true;
}

std::optional<std::uint64_t> structureChecksum(
    std::span<std::byte const> file, std::uint64_t recordOffset, std::vector<Extent> data) {
    data.push_back({recordOffset, IndexRecord::bytes});
    std::ranges::sort(data, {}, &Extent::offset);
    XXH3_state_t state;
    XXH3_64bits_reset(&state);
    std::uint64_t end = 0;
    for (Extent const& extent : data) {
        if (extent.offset < end || extent.offset > file.size() || extent.size > file.size() - extent.offset)
            return std::nullopt;
        XXH3_64bits_update(&state, file.data() + end, extent.offset - end);
        end = extent.offset + extent.size;
    }
    XXH3_64bits_update(&state, file.data() + end, file.size() - end);
    return XXH3_64bits_digest(&state);
}

namespace {

struct ProvenanceText {
    char const* attribute;
    std::string Provenance::*text;
};

constexpr char inputsAttribute[] = "cubes_inputs";
constexpr ProvenanceText provenanceTexts[] = {{"cubes_made_by", &Provenance::madeBy},
    {"cubes_version", &Provenance::version}, {"cubes_time", &Provenance::time}, {"cubes_note", &Provenance::note},
    {"cubes_source", &Provenance::source}};

// One line per input: its content id, a space, its key.
std::string textOf(std::vector<Provenance::Input> const& inputs) {
    std::string lines;
    for (auto const& [key, content] : inputs) lines += content.text() + " " + key + "\n";
    return lines;
}

std::vector<Provenance::Input> inputsOf(std::string const& text) {
    constexpr std::size_t digits = 32;
    std::vector<Provenance::Input> inputs;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        auto const content = Id128::parse(line.substr(0, digits));
        if (content && line.size() > digits) inputs.push_back({line.substr(digits + 1), *content});
    }
    return inputs;
}

}

Id128 Provenance::digest() const {
    if (*this == Provenance{}) return {};
    ContentHash hash;
    auto const add = [&](std::string const& text) {
        hash.add(std::as_bytes(std::span(text.c_str(), text.size() + 1)));
    };
    add(textOf(inputs));
    for (auto const& [attribute, text] : provenanceTexts) add(this->*text);
    return hash.id();
}

void writeProvenance(hid_t object, Provenance const& provenance) {
    if (!provenance.inputs.empty()) writeText(object, inputsAttribute, textOf(provenance.inputs));
    for (auto const& [attribute, text] : provenanceTexts)
        if (!(provenance.*text).empty()) writeText(object, attribute, provenance.*text);
}

Provenance readProvenance(GuardedFile const& file) {
    Provenance provenance;
    provenance.inputs = inputsOf(readText(file, "", inputsAttribute));
    for (auto const& [attribute, text] : provenanceTexts) provenance.*text = readText(file, "", attribute);
    return provenance;
}

void writeText(hid_t object, char const* name, std::string const& text, Encoding encoding) {
    constexpr char const* action = "write an attribute";
    Handle const type(H5Tcopy(H5T_C_S1), H5Tclose, action);
    check(H5Tset_size(type.get(), std::max<std::size_t>(1, text.size())), action);
    check(H5Tset_strpad(type.get(), H5T_STR_NULLPAD), action);
    check(H5Tset_cset(type.get(), encoding == Encoding::utf8 ? H5T_CSET_UTF8 : H5T_CSET_ASCII), action);
    Handle const space(H5Screate(H5S_SCALAR), H5Sclose, action);
    Handle const attribute(
        H5Acreate2(object, name, type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT), H5Aclose, action);
    check(H5Awrite(attribute.get(), type.get(), text.c_str()), action);
}

}
