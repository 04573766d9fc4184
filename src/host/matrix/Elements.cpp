#include "host/matrix/Elements.h"

#include "host/matrix/Failure.h"

#include <cubes/matrix/MatrixLimits.h>

#include <stdexcept>
#include <utility>

namespace cubes::matrix {

namespace {

float* allocate(int rows, int columns) {
    auto const count = elementCount(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(columns));
    requireMatrixFits(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(columns));
    auto* const elements = static_cast<float*>(std::calloc(count, sizeof(float)));
    if (!elements) throw std::bad_alloc();
    return elements;
}

/// The bands of a compressed file of the library, by its table of chunks.
class IndexedBands : public BandSource {
public:
    IndexedBands(platform::FileView view, FileIndex const& index)
        : view_(std::move(view)), bands_{index.header.rows, index.header.columns, index.places.layout.rows},
          filters_(index.places.layout.filters), chunks_(index.places.chunks) {}

    Bands bands() const override { return bands_; }
    void readBand(std::size_t band, float* all) const override {
        BlockDecoder decoder(filters_);
        inflate(decoder, band, all);
    }
    void readAllBut(std::optional<std::size_t> done, float* all) const override {
        inflateAllBut(
            done, bands_, filters_, [&](BlockDecoder& decoder, std::size_t band) { inflate(decoder, band, all); });
    }

private:
    void inflate(BlockDecoder& decoder, std::size_t band, float* all) const {
        ChunkPlace const& chunk = chunks_[band];
        if (chunk.offset == 0) return;
        inflateBand(decoder, bands_, band, view_.bytes().subspan(chunk.offset, chunk.size),
            static_cast<unsigned>(chunk.skipped), all);
    }

    platform::FileView view_;
    Bands bands_;
    Filters filters_;
    std::vector<ChunkPlace> chunks_;
};

std::unique_ptr<Elements> elementsOf(platform::FileView view, FileIndex const& index) {
    if (index.places.layout.filters == Filters::none) return std::make_unique<ViewedElements>(std::move(view), index);
    return std::make_unique<BandedElements>(std::make_unique<IndexedBands>(std::move(view), index));
}

std::optional<RecordedContent> recordedIn(FileIndex const& index) {
    return index.content ? std::optional(RecordedContent{.id = *index.content}) : std::nullopt;
}

OpenedFile openThroughHdf5(std::string const& path) {
    auto table = std::make_unique<OmxTable>(OmxReader(path).onlyTable());
    FileHeader header = table->header();
    auto const recorded = table->recorded();
    return {std::move(header), std::make_unique<BandedElements>(std::move(table)), recorded};
}

}

MemoryElements::MemoryElements(int rows, int columns)
    : columns_(static_cast<std::size_t>(columns)), elements_(allocate(rows, columns), &std::free) {}

ViewedElements::ViewedElements(platform::FileView view, FileIndex const& index)
    : view_(std::move(view)), columns_(static_cast<std::size_t>(index.header.columns)),
      elements_(reinterpret_cast<float*>(view_.bytes().data() + index.places.elements.offset)) {}

BandedElements::BandedElements(std::unique_ptr<BandSource> source)
    : bands_(source->bands()), source_(std::move(source)) {}

MemoryElements& BandedElements::memory() {
    if (!memory_) memory_ = std::make_unique<MemoryElements>(bands_.rows, bands_.columns);
    return *memory_;
}

float* BandedElements::row(int row) {
    std::size_t const band = bands_.of(row);
    if (!source_ || band == read_) return memory().row(row);
    if (read_) return all() + static_cast<std::size_t>(row) * static_cast<std::size_t>(bands_.columns);
    source_->readBand(band, memory().all());
    read_ = band;
    return memory().row(row);
}

// Rows already returned stay where they are, and keep what was written to them.
float* BandedElements::all() {
    if (source_) source_->readAllBut(read_, memory().all());
    source_.reset();
    return memory().all();
}

OpenedFile openMatrixFile(std::string const& path) {
    return describingFailure("cannot open matrix file", path, [&]() -> OpenedFile {
        auto view = platform::FileView::open(path);
        if (view.bytes().empty()) throw std::runtime_error("it is empty");
        if (auto index = findIndex(view.bytes())) {
            auto const recorded = recordedIn(*index);
            auto elements = elementsOf(std::move(view), *index);
            return {std::move(index->header), std::move(elements), recorded};
        }
        return openThroughHdf5(path);
    });
}

bool isIntactFile(std::string const& path) {
    return describingFailure("cannot read matrix file", path, [&] {
        OpenedFile opened = openMatrixFile(path);
        if (!opened.recorded) opened = openThroughHdf5(path);
        return !opened.recorded->isKnown() || opened.recorded->agreesWith(opened.header, opened.elements->all());
    });
}

}
