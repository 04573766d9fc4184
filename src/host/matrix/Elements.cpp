#include "host/matrix/Elements.h"

#include "host/matrix/Failure.h"

#include <stdexcept>

namespace cubes::matrix {

namespace {

float* allocate(int rows, int columns) {
    auto const count = elementCount(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(columns));
    auto* const elements = static_cast<float*>(std::calloc(count, sizeof(float)));
    if (!elements) throw std::bad_alloc();
    return elements;
}

}

MemoryElements::MemoryElements(int rows, int columns)
    : columns_(static_cast<std::size_t>(columns)), elements_(allocate(rows, columns), &std::free) {}

ViewedElements::ViewedElements(platform::FileView view, FileIndex const& index)
    : view_(std::move(view)), columns_(static_cast<std::size_t>(index.header.columns)),
      elements_(reinterpret_cast<float*>(view_.bytes().data() + index.places.elements)) {}

TableElements::TableElements(OmxTable table)
    : rows_(table.header().rows), columns_(table.header().columns), table_(std::move(table)) {}

MemoryElements& TableElements::memory() {
    if (!memory_) memory_ = std::make_unique<MemoryElements>(rows_, columns_);
    return *memory_;
}

float* TableElements::row(int row) {
    if (!table_) return memory().row(row);
    int const first = row - row % table_->bandRows();
    if (first == firstRow_) return memory().row(row);
    if (firstRow_ >= 0) return all() + static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_);
    table_->readBand(first, memory().all());
    firstRow_ = first;
    return memory().row(row);
}

// Rows already handed out stay where they are, and keep what was written to them.
float* TableElements::all() {
    if (table_) table_->readAllBut(firstRow_, memory().all());
    table_.reset();
    return memory().all();
}

OpenedFile openMatrixFile(std::string const& path) {
    return describingFailure("cannot open matrix file", path, [&]() -> OpenedFile {
        auto view = platform::FileView::open(path);
        if (view.bytes().empty()) throw std::runtime_error("it is empty");
        if (auto index = findIndex(view.bytes())) {
            auto elements = std::make_unique<ViewedElements>(std::move(view), *index);
            return {std::move(index->header), std::move(elements)};
        }
        OmxTable table = OmxReader(path).onlyTable();
        FileHeader header = table.header();
        return {std::move(header), std::make_unique<TableElements>(std::move(table))};
    });
}

}
