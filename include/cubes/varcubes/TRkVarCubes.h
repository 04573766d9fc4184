#pragma once

#include <cubes/Export.h>
#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/matrix/RkLockState.h>

#include <array>
#include <memory>

class CubeDataInterface;
class TRkMatrix;
class TRkMatrixHeader;

namespace cubes::catalogue {
class EntryTable;
}

/// The catalogue of six-key result cubes. An entry is found by purpose, mode, time, user, result and iteration; it is
/// one row of the entry table "cube5data1" in the project's own schema, and names one file in the matrix directory. All
/// result cubes of a project share the table and are distinguished by the cube number, which is the cube type. An entry
/// may name a parent entry, from which it was derived: a cube number (0: none) and a key (-1: part not set).
///
/// The last `bool` of most operations: true means that purpose, mode, time and user are zero-based. Stored keys are
/// one-based; result, iteration and parents are never shifted. Operations on a missing entry or table return false,
/// null, -1.0 or an empty text; errors of the database and the matrix layer pass through unchanged, but see Open().
///
/// A stored file name that is empty, absolute or outside the matrix directory is never opened, copied, moved or
/// removed: FileName returns the empty text for it, Get null, Copy and Move false, and Clear removes its row only.
///
/// Operations call each other through their virtual functions, so a derived class changes all of them by overriding
/// one.
class CUBES_API TRkVarCubes : public TRkBaseCubes {
public:
    /// One entry of a list.
    struct CUBES_API TKey {
        TKey(short cubenr, short purpose, short mode, short time, short user, short result, short iteration,
            short parentcubenr, short parentpurpose, short parentmode, short parenttime, short parentuser,
            short parentresult, short parentiteration, bool flag);

        /// -1: the number of parts, 7. 0 cube number, 1 purpose, 2 mode, 3 time, 4 user, 5 result,
        /// 6 iteration; any other index gives -1.
        int operator()(int index) const;
        /// The same for the parent.
        int operator[](int index) const;
        /// The seven numbers and the file name: "3,1,2,1,1,0,1,1-2-1-1-0-1.skm".
        TRkString AsString() const;

        bool flag;
        short cubenr;
        short mode;
        short purpose;
        short time;
        short user;
        short result;
        short iteration;
        /// The file name of the row; in lists over all cubes the cube's name.
        TRkString filename;
        short parentcubenr;
        short parentmode;
        short parentpurpose;
        short parenttime;
        short parentuser;
        short parentresult;
        short parentiteration;
    };

    /// The alias of the entry table: "cube5data1".
    static char const* const FAliasName;

    /// `matrixDirectory`: null or empty selects the working directory of the settings; any other text is used as it is,
    /// with a delimiter added at its end. `extension`: of the matrix files, with its point. `flag`: passed to new
    /// matrices. No table is opened.
    TRkVarCubes(TRkGlobalSettings* settings, char const* matrixDirectory, char const* extension, RkCubeTypes cubeType,
        RkMatrixType matrixType, RkMatrixKind matrixKind, bool flag);
    TRkVarCubes(TRkGlobalSettings* settings, char const* extension, RkCubeTypes cubeType, RkMatrixType matrixType,
        RkMatrixKind matrixKind, bool flag);
    TRkVarCubes(TRkVarCubes const&);
    TRkVarCubes& operator=(TRkVarCubes const&);
    ~TRkVarCubes() override;

    virtual char const* cubeAliasName() const;

    /// The full path of the entry's file, native; empty for a missing entry.
    virtual TRkString FileName(short p, short m, short t, short u, short r, short i, bool zeroBased) const;

    /// Adds the entry's row, see the form with a table.
    virtual bool Add(short p, short m, short t, short u, short r, short i, short parentcubenr, short pp, short pm,
        short pt, short pu, short pr, short pi, bool zeroBased);

    /// Whether the entry exists.
    virtual bool Check(short p, short m, short t, short u, short r, short i, bool zeroBased) const;

    /// Removes the entry's row, then the file or directory it names. The usage counter is not checked: see isCorrect.
    /// What cannot be removed stays, and the result is still true.
    virtual bool Clear(short p, short m, short t, short u, short r, short i, bool zeroBased);

    /// Copies the entry of the first key, row and file, to the second key. Equal keys return true at once. The new row
    /// has no parent; an existing one keeps its file name and loses its parent. False when the source is missing or its
    /// file cannot be copied; the new row is kept then. Throws TRkCubesException ecCubeExists when `failIfExists` and
    /// the target exists.
    ///
    /// The zero-based flag applies to the look-up only: the target is added under the key as it is passed. When source
    /// and target are the same file for that reason, the result is false.
    virtual bool Copy(short p, short m, short t, short u, short r, short i, short toP, short toM, short toT, short toU,
        short toR, short toI, bool failIfExists, bool zeroBased);

    /// The same as Clear of the entry.
    virtual bool Delete(short p, short m, short t, short u, short r, short i, bool zeroBased);

    /// Like Move within this cube, with the source in `other`.
    virtual bool Move(TRkVarCubes const& other, short p, short m, short t, short u, short r, short i, short toP,
        short toM, short toT, short toU, short toR, short toI, bool failIfExists, bool zeroBased);

    /// Clears the entry when it exists, adds it without a parent, and writes its file. When writing then fails, the old
    /// matrix, the parent and the usage counter are lost, and the entry stays without a file; cubes::EntryStore::put
    /// replaces a matrix without that risk, and keeps the parent.
    ///
    /// REQUIRES: the matrix is not bound to the entry's own file. Pass a one-based key: with `zeroBased` the row is
    /// added under the key as it is passed, with parent cube 1, and so is not found under the file's key.
    virtual bool Set(short p, short m, short t, short u, short r, short i, TRkMatrix const& matrix, RkLockState lock,
        bool zeroBased);

    /// The same as Clear().
    virtual bool Remove();

    /// Like Copy within this cube, with the source in `other`, which may be another cube, directory or project. Equal
    /// keys do nothing only in the same cube.
    virtual bool Copy(TRkVarCubes const& other, short p, short m, short t, short u, short r, short i, short toP,
        short toM, short toT, short toU, short toR, short toI, bool failIfExists, bool zeroBased);

    /// Like Copy, but moves the file and then deletes the source's row. A file replaces an existing one atomically;
    /// before a directory is moved, the existing target is removed. A target whose source file is missing is left
    /// unchanged.
    virtual bool Move(short p, short m, short t, short u, short r, short i, short toP, short toM, short toT, short toU,
        short toR, short toI, bool failIfExists, bool zeroBased);

    /// Removes every entry of this cube with its file. True also without entries; false without an
    /// entry table.
    virtual bool Clear();

    /// The same as Clear of the entry.
    virtual bool Remove(short p, short m, short t, short u, short r, short i, bool zeroBased);

    /// The same as Clear().
    virtual bool Delete();

    /// The entry's matrix, opened with the lock state; null when the entry is missing or in use, or
    /// its file is missing or cannot be read. The caller owns it. Its display name is the one-based
    /// key: "[1,2,3,4,5,6]".
    virtual TRkMatrix* Get(
        short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) const;

    /// All cubes of the register.
    virtual bool Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const;

    /// Element `column` of row `row`, both zero-based whatever the flag says; -1.0 when the matrix cannot be opened.
    /// Throws TRkMatrixException outside the matrix. The small matrix object used for reading is released, not deleted.
    virtual double Get(short p, short m, short t, short u, short r, short i, int row, int column, RkLockState lock,
        bool zeroBased) const;

    /// Fills the list with all entries of this cube, in key order, with file names and parents.
    virtual bool Get(TRkAutoListT<TKey>& list) const;

    /// The header of the entry's file, see TRkMatrix::GetHeader; null when it cannot be read.
    virtual TRkMatrixHeader const* GetHeader(
        short p, short m, short t, short u, short r, short i, bool zeroBased) const;

    /// Ends in a delimiter, so that the text followed by a file name is a full path; empty while
    /// there is none.
    virtual TRkFString MatrixDirectory() const;
    /// Adds a delimiter at the end when it is missing.
    virtual void MatrixDirectory(TRkFString const& directory);

    /// Attached data and single parent links are for derived classes; here they do nothing: false,
    /// null, no parent, no children.
    virtual bool SetData(CubeDataInterface* data, short p, short m, short t, short u, short r, short i,
        short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased);
    virtual CubeDataInterface* GetData(short p, short m, short t, short u, short r, short i, bool zeroBased) const;
    virtual void GetParentPMTURI(short p, short m, short t, short u, short r, short i, short& pp, short& pm, short& pt,
        short& pu, short& pr, short& pi) const;
    virtual bool SetParentPMTURI(short p, short m, short t, short u, short r, short i, short pp, short pm, short pt,
        short pu, short pr, short pi);
    virtual short GetParentCubenr(short p, short m, short t, short u, short r, short i) const;
    virtual bool SetParentCubenr(short p, short m, short t, short u, short r, short i, long cubenr);

    /// Appends the entries whose parent is the given one, of all cubes, in the form of GetAllCubes. When it throws, the
    /// list is unchanged.
    virtual void GetPmturis(
        short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi, TRkAutoListT<TKey>& list) const;

    /// Empties the list.
    virtual bool GetChilds(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const;

    /// Adds the entry's row with its parent, its file name and a counter of 0, or changes the parent of an existing
    /// entry. No file is written. A parent cube of 0 and parent parts of -1 are stored as null, with one exception: an
    /// existing entry gets all six parts unchanged unless all are -1. If all are -1, its counter becomes null,
    /// otherwise 0. True also for a table that lacks a key column, to which nothing is added.
    virtual bool Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
        short r, short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
        bool zeroBased);

    /// Moves the cursor to the entry's row.
    virtual bool LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
        short r, short i, bool zeroBased) const;

    /// The open entry table, over this object's connection, in the schema of getMatrixSchema, or in the project's while
    /// that is empty. Empty when it cannot be opened for whatever reason.
    virtual CountedPtr<Rktable::TRkTableProxy> Open() const;

    /// Writes the matrix to the file that the key names; the row is not read. Onto the matrix's own file it writes
    /// unless `lock` has the bit of value 4 and the matrix's state code is not 11. Selected-link and screen-line cubes
    /// write under lock state 3. A matrix type of 7 becomes that of the cube's kind and stays so.
    virtual bool SaveMatrix(TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i,
        RkLockState lock, bool zeroBased);

    virtual TRkString FileName(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t,
        short u, short r, short i, bool zeroBased) const;

    /// Uses the working directory of the settings; false without settings.
    virtual bool FindMatrixDirectory();

    /// Determines the schema of the project that contains the settings' working directory, and sets it. On failure the
    /// result is false, and the schema is left unchanged.
    virtual bool FindMatrixSchema();

    /// The stem of the file name of a new entry, from one-based parts: MakeFilename.
    virtual TRkString createFilename(short p, short m, short t, short u, short r, short i) const;

    /// "1-2-1-1-0-1", or six base-40 pairs at Version 3 or less (which throws ecCubeNrOutOfRange
    /// for a number outside 0 to 1599).
    static TRkString MakeFilename(short p, short m, short t, short u, short r, short i);
    /// Reads a stem of either form. False for any other text; the outputs are unchanged then.
    static bool MakeFilename(char const* stem, int& p, int& m, int& t, int& u, int& r, int& i);

    /// The cube number of this cube's entries: its type.
    short CubeNumber() const noexcept { return static_cast<short>(cubeType_); }

    /// Fills the list with the entries of all cubes that nobody uses, in key order, with parents and, as file name, the
    /// name of their cube in the register (empty for an unknown cube). False when the table cannot be opened or the
    /// last cube is unknown.
    bool GetAllCubes(TRkAutoListT<TKey>& list) const;

    /// Raises or lowers the entry's count of users, never below 0; keys are one-based. False for a missing entry or a
    /// table without the counter. Concurrent changes of several processes are all counted.
    bool incUsage(short p, short m, short t, short u, short r, short i);
    bool decUsage(short p, short m, short t, short u, short r, short i);
    /// Whether the entry exists and nobody uses it (its counter is null or 0, or not kept).
    bool isCorrect(short p, short m, short t, short u, short r, short i) const;

    /// Orders by the seven numbers of the keys: -1, 0 or 1.
    static int TKeySortCompare(TKey* first, TKey* second);

protected:
    /// The file that SaveMatrix writes for a key, whatever its row names; empty for a zero-based key that cannot be
    /// stored because a part is 32767.
    TRkFString MatrixFile(short p, short m, short t, short u, short r, short i, bool zeroBased) const;
    /// The entry in the current row of the table's cursor, without a file name.
    static std::unique_ptr<TKey> ReadEntry(cubes::catalogue::EntryTable const& entries);

private:
    bool AppendFree(TRkAutoListT<TKey>& list, std::array<short, 7> const* parent) const;
};
