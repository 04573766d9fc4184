#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// What the library and its program cubes-reader, which come from one build, say to each other. A question is its
/// size (std::uint32_t) and a Message; an answer is its kind and size (AnswerHead) and a Message, the text of an error,
/// or the bytes of numbers. The program begins with an answer without content, or the system's error because of which
/// it cannot work.
namespace cubes::hdf5 {

/// Objects are named by their path from the root, without a slash at the beginning; "" is the root.
enum class Ask : std::uint8_t { open, exists, links, dataset, attribute, chunks, numbers };

/// Types of numbers in memory.
enum class NumberType : std::uint8_t { uint8, int16, uint16, int32, uint32, int64, uint64, float32, float64 };

template <typename Number>
constexpr NumberType typeOf() {
    if constexpr (std::is_same_v<Number, float>) return NumberType::float32;
    if constexpr (std::is_same_v<Number, double>) return NumberType::float64;
    if constexpr (std::is_same_v<Number, std::uint8_t>) return NumberType::uint8;
    if constexpr (std::is_same_v<Number, std::int16_t>) return NumberType::int16;
    if constexpr (std::is_same_v<Number, std::uint16_t>) return NumberType::uint16;
    if constexpr (std::is_same_v<Number, std::int32_t>) return NumberType::int32;
    if constexpr (std::is_same_v<Number, std::uint32_t>) return NumberType::uint32;
    if constexpr (std::is_same_v<Number, std::int64_t>) return NumberType::int64;
    if constexpr (std::is_same_v<Number, std::uint64_t>) return NumberType::uint64;
}

constexpr std::size_t sizeOf(NumberType type) {
    constexpr std::uint8_t sizes[] = {1, 2, 2, 4, 4, 8, 8, 4, 8};
    return sizes[static_cast<std::size_t>(type)];
}

/// `tooLittleMemory` has no text; `systemError`, that the file could not be read, has the system's number of the error
/// (std::int32_t) in its place.
enum class AnswerKind : std::uint64_t { content, error, tooLittleMemory, systemError };

struct AnswerHead {
    AnswerKind kind;
    std::uint64_t size;
};

/// What a name in a group stands for. Links to anywhere else, in this or in another file, are never followed.
enum class LinkKind : std::uint8_t { group, dataset, other, elsewhere };

struct Link {
    std::string name;
    LinkKind kind = LinkKind::other;
    /// Of a dataset.
    std::int32_t dimensions = 0;
};

enum class TypeClass : std::uint8_t { integer, real, text, other };

/// The type of stored elements. `isSigned` concerns integers.
struct StoredType {
    TypeClass kind = TypeClass::other;
    bool isSigned = false;
    /// Of little-endian single-precision numbers.
    bool isFloat32 = false;
    std::uint64_t size = 0;
};

enum class DatasetLayout : std::uint8_t { compact, contiguous, chunked };

struct Filter {
    std::int32_t id = 0;
    bool isAvailable = false;
};

/// The place of the stored bytes of a chunk; all 0 for a chunk that is not stored.
struct ChunkPlace {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    /// A bit for each filter that was skipped.
    std::uint64_t skipped = 0;
};

/// A dataset whose elements are in its own file.
struct Dataset {
    StoredType type;
    DatasetLayout layout = DatasetLayout::compact;
    /// Whether the file's bytes can be read at the places of chunks.
    bool hasPlaces = false;
    /// Elements that were never written are 0.
    bool fillsWithZero = false;
    /// Of contiguous elements; 0 when none are stored.
    std::uint64_t offset = 0;
    /// The bytes of all elements in the file.
    std::uint64_t storedSize = 0;
    std::vector<std::uint64_t> dimensions;
    /// The dimensions of a chunk.
    std::vector<std::uint64_t> chunk;
    std::vector<Filter> filters;
};

/// An attribute. The value is there for one text of fixed length, and for numbers: all of them as std::int64_t,
/// std::uint64_t or double.
struct Attribute {
    StoredType type;
    std::uint64_t count = 0;
    std::vector<std::byte> value;
};

/// A message is damaged: the other side did not write it as agreed.
class MessageError : public std::runtime_error {
public:
    MessageError() : std::runtime_error("a message between processes is damaged") {}
};

/// Values one after the other; texts and lists with their length. What is taken is in the order in which it was put;
/// taking throws MessageError where that cannot be.
class Message {
public:
    Message() = default;
    explicit Message(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

    std::span<std::byte const> bytes() const noexcept { return bytes_; }

    /// For numbers and enumerations. Not for truth values, which not every byte is.
    template <typename Value>
    requires(!std::is_same_v<Value, bool>) void put(Value value) { append(std::as_bytes(std::span(&value, 1))); }
    template <typename Value>
    requires(!std::is_same_v<Value, bool>) Value take() {
        Value value;
        std::memcpy(&value, next(sizeof value).data(), sizeof value);
        return value;
    }
    void putFlag(bool flag) { put(static_cast<std::uint8_t>(flag)); }
    bool takeFlag() { return take<std::uint8_t>() != 0; }

    void putText(std::string_view text) { putList<char>(text); }
    std::string takeText() { return takeAll<std::string>(); }
    template <typename Value>
    void putList(std::span<Value const> values) {
        put(std::uint64_t{values.size()});
        append(std::as_bytes(values));
    }
    template <typename Value>
    std::vector<Value> takeList() {
        return takeAll<std::vector<Value>>();
    }

    void put(std::vector<Link> const& links);
    std::vector<Link> takeLinks();
    void put(Dataset const& dataset);
    Dataset takeDataset();
    void put(Attribute const& attribute);
    Attribute takeAttribute();

private:
    void append(std::span<std::byte const> added);
    std::span<std::byte const> next(std::size_t size);
    void put(StoredType const& type);
    StoredType takeType();

    template <typename List>
    List takeAll() {
        using Value = typename List::value_type;
        auto const count = take<std::uint64_t>();
        if (count > bytes_.size() / sizeof(Value)) throw MessageError();
        auto const from = next(static_cast<std::size_t>(count) * sizeof(Value));
        List list(static_cast<std::size_t>(count), Value{});
        if (count > 0) std::memcpy(list.data(), from.data(), from.size());
        return list;
    }

    std::vector<std::byte> bytes_;
    std::size_t taken_ = 0;
};

}
