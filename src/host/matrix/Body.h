#pragma once

#include "host/matrix/Elements.h"

#include <cubes/matrix/TRkBaseMatrix.h>
#include <cubes/matrix/TRkMatrixHeader.h>

#include <memory>
#include <string>

namespace cubes::matrix {

/// What a TRkMatrix holds: elements, and where they belong.
class Body : public virtual TRkBaseMatrix {
public:
    explicit Body(std::string file) : file_(std::move(file)) {}
    char const* FileName() const noexcept override { return file_.c_str(); }

    /// A row for reading.
    virtual float* row(int row) = 0;
    /// A row for writing.
    virtual float* writableRow(int row) { return this->row(row); }
    /// All elements in one piece, for reading.
    virtual float* all() = 0;
    /// Takes over all elements; `header` is that of this matrix.
    virtual void assign(TRkMatrixHeader const& header, float const* elements) = 0;
    /// Frees what can be had again. Whether nothing is left that belongs into the file.
    virtual bool release() { return false; }
    /// Brings to the file what was written and is not there yet.
    virtual void finish(TRkMatrixHeader const&) {}

protected:
    std::string const& file() const noexcept { return file_; }

private:
    std::string file_;
};

class MemoryBody : public Body {
public:
    MemoryBody(int rows, int columns);
    float* row(int row) override { return elements_.row(row); }
    float* all() override { return elements_.all(); }
    void assign(TRkMatrixHeader const& header, float const* elements) override;

private:
    MemoryElements elements_;
};

/// A file opened for reading. After a release it is opened again when elements are asked for.
class FileBody : public Body {
public:
    FileBody(std::string file, OpenedFile opened);
    /// For a file that is opened when elements are first asked for.
    FileBody(std::string file, int rows, int columns);
    float* row(int row) override;
    float* all() override;
    void assign(TRkMatrixHeader const& header, float const* elements) override;
    bool release() override;

private:
    Elements& opened();

    int rows_;
    int columns_;
    std::unique_ptr<Elements> elements_;
};

}
