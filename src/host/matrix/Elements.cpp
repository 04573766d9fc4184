#include "host/matrix/Elements.h"

#include "host/matrix/Failure.h"

#include <algorithm>

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

TableElements::TableElements(OmxTable table) : table_(std::move(table)) {}

float* TableElements::row(int row) {
    int const band = row / table_.bandRows();
    if (complete_ || band == firstBand_) return memory_->row(row);
    if (memory_) return all() + static_cast<std::size_t>(row) * static_cast<std::size_t>(table_.header().columns);
    auto memory = std::make_unique<MemoryElements>(table_.header().rows, table_.header().columns);
    table_.readBand(band * table_.bandRows(), memory->all());
    memory_ = std::move(memory);
    firstBand_ = band;
    return memory_->row(row);
}

float* TableElements::all() {
    if (complete_) return memory_->all();
    // Rows already handed out stay where they are, and keep what was written to them.
    int const columns = table_.header().columns;
    auto all = std::make_unique<MemoryElements>(table_.header().rows, columns);
    table_.readAll(all->all());
    if (!memory_) {
        memory_ = std::move(all);
    } else {
        int const first = firstBand_ * table_.bandRows();
        int const behind = std::min(first + table_.bandRows(), table_.header().rows);
        std::copy(all->row(0), all->row(first), memory_->row(0));
        std::copy(all->row(behind), all->row(table_.header().rows), memory_->row(behind));
    }
    complete_ = true;
    return memory_->all();
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
