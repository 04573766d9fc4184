#pragma once

#include "host/matrix/Elements.h"
#include "host/matrix/StagedFile.h"

#include <cubes/matrix/TRkMatrix.h>

#include <memory>
#include <optional>
#include <string>

namespace cubes::matrix {

/// The elements of a TRkMatrix and the file they belong to.
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
    /// The same for writing.
    virtual float* writableAll() { return all(); }
    /// Copies all elements; `header` is that of this matrix.
    virtual void assign(TRkMatrixHeader const& header, float const* elements) = 0;
    /// Releases cached rows; returns whether nothing was left unsaved.
    virtual bool release() { return false; }
    /// Writes pending elements to the file.
    virtual void finish(TRkMatrixHeader const&) {}
    /// See TRkMatrix::IsIntact.
    virtual bool isIntact() { return true; }

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
    /// For a file that is opened when elements are first requested.
    FileBody(std::string file, int rows, int columns);
    float* row(int row) override;
    float* writableRow(int row) override;
    float* all() override;
    float* writableAll() override;
    void assign(TRkMatrixHeader const& header, float const* elements) override;
    bool release() override;
    bool isIntact() override;

private:
    OpenedFile& opened();
    bool agreesWithRecord();

    int rows_;
    int columns_;
    std::optional<OpenedFile> opened_;
    // Whether the elements may have been changed in memory.
    bool isWritable_ = false;
};

/// A matrix for a new file. Its elements are in memory while they are filled by rows; the file is written when all are
/// assigned, or by the destructor.
class NewFileBody : public Body {
public:
    /// Creates the temporary file, so that a directory that cannot be written to is reported at once.
    NewFileBody(std::string file, int rows, int columns);

    float* row(int row) override;
    float* writableRow(int row) override;
    float* all() override;
    float* writableAll() override;
    void assign(TRkMatrixHeader const& header, float const* elements) override;
    bool release() override;
    void finish(TRkMatrixHeader const& header) override;
    bool isIntact() override;

private:
    MemoryElements& memory();
    void publish(TRkMatrixHeader const& header, float const* elements);

    int rows_;
    int columns_;
    std::optional<StagedFile> staged_;
    std::unique_ptr<MemoryElements> memory_;
    std::optional<FileBody> published_;
    bool filled_ = false;
};

/// Drops the zone numbers of a released matrix whose object is not deleted.
void dropZones(TRkMatrix& matrix);

}
