#include "host/hdf5/ReaderProtocol.h"

namespace cubes::hdf5 {

namespace {

constexpr std::size_t mostDimensions = 32;

bool isPossible(Dataset const& dataset) {
    bool const isChunked = dataset.layout == DatasetLayout::chunked;
    return dataset.dimensions.size() <= mostDimensions &&
           (!isChunked || dataset.chunk.size() == dataset.dimensions.size());
}

}

void Message::append(std::span<std::byte const> added) {
    bytes_.insert(bytes_.end(), added.begin(), added.end());
}

std::span<std::byte const> Message::next(std::size_t size) {
    if (size > bytes_.size() - taken_) throw MessageError();
    auto const found = std::span<std::byte const>(bytes_).subspan(taken_, size);
    taken_ += size;
    return found;
}

void Message::put(std::vector<Link> const& links) {
    put(std::uint64_t{links.size()});
    for (Link const& link : links) {
        putText(link.name);
        put(link.kind);
        put(link.dimensions);
    }
}

std::vector<Link> Message::takeLinks() {
    std::vector<Link> links;
    for (auto left = take<std::uint64_t>(); left > 0; --left) {
        Link link;
        link.name = takeText();
        link.kind = take<LinkKind>();
        link.dimensions = take<std::int32_t>();
        links.push_back(std::move(link));
    }
    return links;
}

void Message::put(StoredType const& type) {
    put(type.kind);
    putFlag(type.isSigned);
    putFlag(type.isFloat32);
    put(type.size);
}

StoredType Message::takeType() {
    StoredType type;
    type.kind = take<TypeClass>();
    type.isSigned = takeFlag();
    type.isFloat32 = takeFlag();
    type.size = take<std::uint64_t>();
    return type;
}

void Message::put(Dataset const& dataset) {
    put(dataset.type);
    put(dataset.layout);
    putFlag(dataset.hasPlaces);
    putFlag(dataset.fillsWithZero);
    put(dataset.offset);
    put(dataset.storedSize);
    putList<std::uint64_t>(dataset.dimensions);
    putList<std::uint64_t>(dataset.chunk);
    put(std::uint64_t{dataset.filters.size()});
    for (Filter const& filter : dataset.filters) {
        put(filter.id);
        putFlag(filter.isAvailable);
    }
}

Dataset Message::takeDataset() {
    Dataset dataset;
    dataset.type = takeType();
    dataset.layout = take<DatasetLayout>();
    dataset.hasPlaces = takeFlag();
    dataset.fillsWithZero = takeFlag();
    dataset.offset = take<std::uint64_t>();
    dataset.storedSize = take<std::uint64_t>();
    dataset.dimensions = takeList<std::uint64_t>();
    dataset.chunk = takeList<std::uint64_t>();
    for (auto left = take<std::uint64_t>(); left > 0; --left) {
        auto const id = take<std::int32_t>();
        dataset.filters.push_back({id, takeFlag()});
    }
    if (!isPossible(dataset)) throw MessageError();
    return dataset;
}

void Message::put(Attribute const& attribute) {
    put(attribute.type);
    put(attribute.count);
    putList<std::byte>(attribute.value);
}

Attribute Message::takeAttribute() {
    Attribute attribute;
    attribute.type = takeType();
    attribute.count = take<std::uint64_t>();
    attribute.value = takeList<std::byte>();
    return attribute;
}

}
