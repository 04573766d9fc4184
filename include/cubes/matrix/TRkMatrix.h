#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/RkLockState.h>
#include <cubes/matrix/RkMatrixKind.h>
#include <cubes/matrix/RkMatrixType.h>
#include <cubes/matrix/TRkBaseMatrix.h>
#include <cubes/matrix/TRkMatrixHeader.h>
#include <cubes/text/TRkString.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

class TRkMatrix;

namespace cubes::matrix {
void dropZones(TRkMatrix& matrix);
}

/// A matrix of single-precision values: rows are origins, columns are destinations, both
/// zero-based. Bound to one file, or in memory. Movable, not copyable.
///
/// Files are OMX 0.2 files (see docs/matrix-file.md). Writing is atomic: a new file is written to a temporary file
/// beside its target and renamed over it when it is complete. An object opened on a file keeps the state it was opened
/// on, even when the file is replaced or removed.
///
/// Threads: different objects may be used in different threads at once, also on the same file. One thread at a time
/// may use one object, for reading as well.
class CUBES_API TRkMatrix {
public:
    /// An empty object, which is not valid; for calls of GetHeader.
    TRkMatrix();
    /// Opens a matrix file. When that fails, because the file is missing, damaged, truncated, locked or not a matrix
    /// file, IsValid() returns false and Reason() the cause. The kind stored in the file overrides `kind`. `name` is
    /// the display name; null or empty: the one stored in the file. With the bit of value 2 in `lock` the file is
    /// locked against all other writers; opening for reading takes no lock. The unnamed arguments are ignored.
    TRkMatrix(char const* fileName, int, char const* name, bool, RkMatrixKind kind, RkLockState lock, int);
    /// Creates a matrix for a new file: `rows` x `columns` zeros. The file appears, or replaces an old one, when
    /// AssignFrom has filled the matrix or when a matrix filled by rows is destroyed. When nothing was written no file
    /// appears and an old one stays. The directory must exist. Not valid when the file cannot be created, its write
    /// lock is refused or a dimension is below 1. The first text is the display name; the second text and the unnamed
    /// arguments are ignored.
    TRkMatrix(int rows, int columns, RkMatrixType type, char const* fileName, int, char const*, char const*, bool,
        RkMatrixKind kind, RkLockState lock);
    TRkMatrix(TRkMatrix&&) noexcept;
    TRkMatrix& operator=(TRkMatrix&&) noexcept;

    /// A matrix in memory, all elements 0. Throws TRkMatrixException for a dimension below 1 or
    /// more elements than memory can hold.
    static TRkMatrix inMemory(int rows, int columns);

    /// A selected-link matrix, all elements 0: its body is a TRkVLSelectedLinkMatrix. `file` is
    /// the file that Flush writes; null or empty for a matrix in memory. Throws TRkMatrixException like inMemory; not
    /// valid when the file cannot be created.
    static TRkMatrix selectedLink(int rows, int columns, char const* file);

    /// Writes the file of a new matrix that was filled by rows; when that fails the old file stays.
    virtual ~TRkMatrix();
    /// Whether the object is usable.
    virtual bool IsValid() const;
    /// The lock state the object was opened or created with; 0 in memory.
    virtual int StateCode() const;
    /// The file this matrix is bound to; empty in memory. Valid as long as the object.
    virtual char const* FileName() const;
    /// Copies all elements of another matrix of the same dimensions, and its zone numbers; for a
    /// new file it then writes the file. When that fails, or the source is not intact (see IsIntact), the object is no
    /// longer valid and the old file stays. Throws TRkMatrixException when dimensions differ.
    virtual void AssignFrom(TRkMatrix const& source);
    /// The second dimension: number of destinations.
    virtual int Columns() const;
    /// The first dimension: number of origins.
    virtual int Rows() const;
    /// The `Columns()` values of a row, valid until Release or the end of the object. Writing to
    /// a matrix opened from a file, or to a new one after AssignFrom, changes this object alone. Throws
    /// TRkMatrixException for a row outside the matrix or an object that is not valid. `access` is ignored.
    virtual float* RowAt(int row, int access);
    /// Closes the file and releases its write lock and the rows read from it; changes to those rows are lost. The
    /// header is kept. A later access to elements opens the file again, in its state at that time, and throws when it
    /// has other dimensions. Does nothing to a matrix in memory or to a new file that is being filled.
    virtual void Release();
    /// Called on a matrix that is to be saved, before its file name is read.
    virtual void Prepare() const;

    float const* RowAt(int row, int access) const;

    /// Every element, row by row, whatever the storage: a plain file is read as it is touched, a compressed one at
    /// once. Valid until Release, AssignFrom on a new file, or the end of the object. Throws TRkMatrixException for an
    /// object that is not valid and a file that cannot be read; the object stays usable.
    std::span<float const> Elements() const;
    /// The elements of a row, zero-based. A compressed file reads the row's band alone. Valid and throws like Elements,
    /// also for a row outside the matrix.
    std::span<float const> Row(int row) const;
    /// The same for writing, with the effect of the RowAt for writing: a matrix opened from a file keeps what is
    /// written to itself, a new file is finished with it.
    std::span<float> WritableElements();
    std::span<float> WritableRow(int row);
    /// The element of an OD pair, by zone numbers. In a matrix without zone numbers rows and columns count from 1.
    /// Where a zone number occurs twice the first row or column counts. Throws TRkMatrixException when there is no such
    /// zone, and like Row.
    float At(int originZone, int destinationZone) const;

    /// Whether the elements and zone numbers that were opened from a file agree with the checksum in it: otherwise
    /// another program changed them, or they are damaged. Reads all. Opening and reading do not verify. True in memory
    /// and for files of other programs, which have no checksum. What is written to this object is no damage: the file
    /// under its name is then verified in its present state, while it is there. Throws like Elements.
    bool IsIntact() const;

    /// The header of a matrix file; null when it cannot be read. Kept alive by the library until
    /// this thread's next GetHeader.
    TRkMatrixHeader const* GetHeader(char const* fileName);
    TRkMatrixHeader const& Header() const noexcept;
    RkMatrixType Type() const noexcept;
    RkMatrixKind MatrixKind() const noexcept;
    /// Changes the kind of this object.
    void MatrixKind(RkMatrixKind kind);
    /// The display name; empty when there is none.
    TRkString const& Name() const noexcept;
    /// Zone numbers of the rows and columns, in order; empty when not known.
    std::vector<std::int32_t> const& Zones() const noexcept;
    /// Sets the zone numbers of rows and columns (empty: none). Throws TRkMatrixException
    /// unless the matrix is square and there is one number a row.
    void SetZones(std::vector<std::int32_t> zones);
    /// The body that holds the elements; null when the object is not valid.
    TRkBaseMatrix const* Body() const noexcept;
    TRkBaseMatrix* Body() noexcept;
    /// Why the object is not valid; empty while it is.
    std::string const& Reason() const noexcept;

private:
    friend void cubes::matrix::dropZones(TRkMatrix& matrix);

    struct State;
    std::unique_ptr<State> state_;
};
