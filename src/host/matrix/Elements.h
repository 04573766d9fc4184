#pragma once

#include "host/matrix/FileIndex.h"
#include "host/matrix/OmxReader.h"
#include "host/platform/File.h"

#include <cstdlib>
#include <memory>
#include <optional>

namespace cubes::matrix {

/// The elements of a matrix, row by row in one block once all of them are loaded. Writing to them changes nothing
/// outside the object. Pointers are valid as long as the object.
class Elements {
public:
    Elements() = default;
    Elements(Elements const&) = delete;
    Elements& operator=(Elements const&) = delete;
    virtual ~Elements() = default;

    virtual float* row(int row) = 0;
    virtual float* all() = 0;
};

/// Elements in memory, 0 at first.
class MemoryElements : public Elements {
public:
    /// Throws std::length_error or std::bad_alloc.
    MemoryElements(int rows, int columns);
    float* row(int row) override { return elements_.get() + static_cast<std::size_t>(row) * columns_; }
    float* all() override { return elements_.get(); }

private:
    std::size_t columns_;
    // From calloc: a large block uses no memory until it is accessed.
    std::unique_ptr<float, decltype(&std::free)> elements_;
};

/// The elements of a plain file, read on access.
class ViewedElements : public Elements {
public:
    ViewedElements(platform::FileView view, FileIndex const& index);
    float* row(int row) override { return elements_ + static_cast<std::size_t>(row) * columns_; }
    float* all() override { return elements_; }

private:
    platform::FileView view_;
    std::size_t columns_;
    float* elements_;
};

/// Elements that must be inflated or converted: reading a single row decodes its band alone, and a row of a second band
/// decodes all.
class BandedElements : public Elements {
public:
    explicit BandedElements(std::unique_ptr<BandSource> source);
    float* row(int row) override;
    float* all() override;

private:
    MemoryElements& memory();

    Bands const bands_;
    // Closed when everything is read, so that other programs can replace the file on every system.
    std::unique_ptr<BandSource> source_;
    std::unique_ptr<MemoryElements> memory_;
    // The band that was read by itself.
    std::optional<std::size_t> read_;
};

/// An opened matrix file.
struct OpenedFile {
    FileHeader header;
    std::unique_ptr<Elements> elements;
    /// Nothing when HDF5 has to read it, as in plain files of the first version.
    std::optional<RecordedContent> recorded = RecordedContent{};
};

/// Opens a matrix file of any kind. Throws TRkMatrixException with the file and the reason.
OpenedFile openMatrixFile(std::string const& path);

/// Whether the matrix in a file agrees with the content that the file records. Throws TRkMatrixException.
bool isIntactFile(std::string const& path);

}
