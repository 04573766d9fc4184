#pragma once

#include "host/hdf5/GuardedFile.h"
#include "host/hdf5/Hdf5.h"
#include "host/platform/File.h"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The metadata that every file of the library carries: the index record, which is found and rewritten without HDF5,
/// and the provenance, which is stored in HDF5 attributes.
namespace cubes::hdf5 {

/// 128 bits: a content id, the identity of a directory, a digest. All zero means unknown.
struct Id128 {
    std::array<std::uint8_t, 16> bytes{};

    auto operator<=>(Id128 const&) const = default;
    bool isKnown() const noexcept { return *this != Id128{}; }
    /// 32 hexadecimal digits, lower case.
    std::string text() const;
    /// The id of such a text; nothing for any other text.
    static std::optional<Id128> parse(std::string_view text);
};

/// XXH3 (128 bits, no seed) over bytes that are added piece by piece. The id is in XXH3's canonical order, so its text
/// is the hexadecimal digest that other programs print.
class ContentHash {
public:
    ContentHash();
    ContentHash(ContentHash const&) = delete;
    ContentHash& operator=(ContentHash const&) = delete;
    ~ContentHash();
    void add(std::span<std::byte const> bytes);
    Id128 id() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The directory and the entry of a file. A hint: the database decides. Empty when unknown.
struct FileStamp {
    /// The identity of the directory of matrix files.
    Id128 directory = {};
    /// The cube's name in UTF-8. The record keeps its first 192 bytes, cut between characters.
    std::string cube = {};
    std::int32_t cubeNumber = 0;
    /// The parts of the entry's key, at most 6.
    std::vector<std::int32_t> key = {};

    bool operator==(FileStamp const&) const = default;
};

/// The record as docs/matrix-file.md describes it. Holds everything that may change without HDF5.
struct IndexRecord {
    static constexpr std::size_t bytes = 1024;
    static constexpr std::size_t detailBytes = 704;
    /// The dataset under "/" that holds it: uint8 [bytes]. Create it first, so that its bytes are at a multiple of 8 in
    /// the part of the file that is searched.
    static constexpr char dataset[] = "cubes_index";

    enum class Holds : std::uint32_t { matrix = 1, routes = 2, routeData = 3 };

    Holds holds = Holds::matrix;
    Id128 content = {};
    /// The digest of the provenance; unknown when there is none.
    Id128 provenance;
    FileStamp stamp;
    /// See structureChecksum.
    std::uint64_t structure = 0;
    std::uint64_t fileSize = 0;
    /// The part that depends on the kind of file.
    std::array<std::byte, detailBytes> details{};
};

/// The bytes of a record, its own checksum included. Throws std::length_error for a key of more than 6 parts.
std::array<std::byte, IndexRecord::bytes> encode(IndexRecord const& record);

/// Writes the record's dataset into a file, by default without content, and returns its place. Throws Error.
/// REQUIRES: within a Session.
std::uint64_t writeRecord(hid_t file, std::optional<IndexRecord> const& record);

/// Whether a file with these first bytes is an HDF5 file, as far as they show: HDF5 also allows others before its own.
bool beginsAsHdf5(std::span<std::byte const> beginning);

struct FoundRecord {
    std::uint64_t offset = 0;
    IndexRecord record;
};

/// The record within the first 8192 bytes of a file; nothing when there is none, when its version is unknown or its
/// checksum wrong. Says nothing about the file around it; see hasRecordAt.
std::optional<FoundRecord> findRecord(std::span<std::byte const> file);
/// The same for an open file. Throws std::system_error.
std::optional<FoundRecord> findRecord(platform::File const& file);

/// "`subject` was changed outside Cubes or damaged: ...", for content that does not have its recorded id.
std::string reasonOfDamage(std::string_view subject);

/// Whether the record found at that place is still the file's: deleting its dataset leaves the bytes where they are.
bool hasRecordAt(GuardedFile const& file, std::uint64_t offset);

/// Rewrites the stamp of a file that has a record; returns whether it has one. Throws std::system_error.
bool restamp(platform::File& file, FileStamp const& stamp);

/// A run of bytes in a file.
struct Extent {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

/// The checksum (XXH3, 64 bits) over everything in a file except its record and the given runs of data: while it is
/// valid, the structure has not been changed, and the data are where they were. Nothing when a run is outside the file
/// or two overlap.
std::optional<std::uint64_t> structureChecksum(
    std::span<std::byte const> file, std::uint64_t recordOffset, std::vector<Extent> data);

/// The inputs from which a matrix or route set was made, and how. Texts are in UTF-8.
struct Provenance {
    struct Input {
        std::string key = {};
        Id128 content = {};

        bool operator==(Input const&) const = default;
    };
    std::vector<Input> inputs = {};
    std::string madeBy = {};
    std::string version = {};
    std::string time = {};
    std::string note = {};
    std::string source = {};

    bool operator==(Provenance const&) const = default;
    /// XXH3 over the attributes' texts, each followed by a zero byte; unknown when all are empty.
    Id128 digest() const;
};

/// Writes the attributes of an object, usually "/"; empty texts make no attribute. Throws Error.
/// REQUIRES: within a Session.
void writeProvenance(hid_t object, Provenance const& provenance);
/// Reads those of the root; a missing attribute or one of another type is empty. Throws std::runtime_error.
Provenance readProvenance(GuardedFile const& file);

enum class Encoding { ascii, utf8 };

/// Writes an attribute with a text of fixed length. Throws Error. REQUIRES: within a Session.
void writeText(hid_t object, char const* name, std::string const& text, Encoding encoding = Encoding::utf8);

}
