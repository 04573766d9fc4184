#pragma once

#include <cubes/Export.h>
#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/matrix/RkLockState.h>

class TRkMatrix;
class TRkMatrixHeader;

/// The catalogue of four-key matrix cubes. An entry is found by cube, purpose, mode, time and
/// user; it is one row of the entry table "cube4data1" and names one file in the matrix directory.
///
/// The last `bool` of every key operation: true means that purpose, mode, time and user are zero-based. Stored keys are
/// one-based. Cubes are named by number or by name; an unknown name finds nothing. Operations on a missing entry or
/// table return false, null, -1.0 or an empty text; errors of the database and the matrix layer pass through unchanged.
///
/// A stored file name that is empty, absolute or outside the matrix directory is never opened or removed: FileName
/// returns the empty text for it, Get null, and Clear removes its row only.
class CUBES_API TRkMatCubes : public TRkBaseCubes {
public:
    /// One entry of a list.
    struct CUBES_API TKey {
        TKey(short cubenr, short purpose, short mode, short time, short user, bool zeroBased);

        /// -1: the number of parts, 5. 0 cube number, 1 purpose, 2 mode, 3 time, 4 user; any
        /// other index gives -1.
        int operator()(int index) const;
        int operator[](int index) const;
        /// Cube number, purpose, mode, time, user and name, joined by ",": "12,1,2,3,4,Base".
        TRkString AsString() const;

        bool zeroBased;
        short cubenr;
        short mode;
        short purpose;
        short time;
        short user;
        /// The cube's name, if the list has names.
        TRkString name;
    };

    /// "matcube".
    static char const* const FAliasName;

    /// Takes the matrix directory from the settings. `ext`: extension of the matrix files with its
    /// point. `flag`: passed to new matrices.
    TRkMatCubes(TRkGlobalSettings* settings, char const* ext, bool flag);
    /// A null or empty directory is taken from the settings.
    TRkMatCubes(TRkGlobalSettings* settings, char const* matrixDir, char const* ext, bool flag);
    /// A text is not a flag: (settings, directory, extension) lacks one.
    TRkMatCubes(TRkGlobalSettings*, char const*, char const*) = delete;
    TRkMatCubes(TRkMatCubes const&);
    TRkMatCubes& operator=(TRkMatCubes const&);
    ~TRkMatCubes() override;

    /// The alias of the entry table: "cube4data1".
    virtual char const* cubeAliasName() const;

    /// Takes the matrix directory from the settings, if there are any; true.
    bool FindMatrixDirectory();
    /// Four-key cubes always work in the schema "public"; true.
    bool FindMatrixSchema();

    /// The open entry table, over this object's connection; empty when it cannot be opened.
    CountedPtr<Rktable::TRkTableProxy> Open() const;
    /// Moves the cursor to the entry's row.
    bool LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
        bool zeroBased) const;
    /// Adds the entry's row with a counter of 0; an existing entry is left unchanged, and the result is true as well.
    /// No file is written.
    bool Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
        bool zeroBased) const;
    /// Registers the cube when it is new, then adds the entry. True also when there is no entry table.
    bool Add(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    /// Registers the cube only.
    bool Add(char const* cubeName) const;

    /// The full path of the entry's file, native; empty for a missing entry.
    TRkString FileName(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u,
        bool zeroBased) const;
    TRkString FileName(short cubenr, short p, short m, short t, short u, bool zeroBased) const;
    TRkString FileName(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    /// The stem of an entry's file name, from one-based parts: "12-1-2-3-4", or five base-40 pairs
    /// at Version 3 or less (which throws ecCubeNrOutOfRange for a number outside 0 to 1599).
    static TRkString MakeFilename(short cubenr, short p, short m, short t, short u);
    /// Reads a stem of either form. False for a text that is neither; a text with "-" and fewer
    /// than five pieces gives true and leaves the outputs unchanged.
    static bool MakeFilename(char const* stem, int& cubenr, int& p, int& m, int& t, int& u);

    /// Fills the list with the rows from the cursor's position to the end; names stay empty.
    bool Get(CountedPtr<Rktable::TRkTableProxy> table, TRkAutoListT<TKey>& list) const;
    /// Sets the cube's name from the register in every key of the list; empty for an unknown cube.
    bool GetNames(CountedPtr<Rktable::TRkTableProxy> catalogue, TRkAutoListT<TKey> list) const;
    /// Every entry of every cube, with names.
    bool Get(TRkAutoListT<TKey>& list) const;

    /// Whether the cube exists.
    bool Check(short cubenr) const;
    bool Check(char const* cubeName) const;
    /// Whether the entry exists.
    bool Check(short cubenr, short p, short m, short t, short u, bool zeroBased) const;
    bool Check(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;

    /// Removes every entry of the cube with its file; the cube stays. True also without entries;
    /// false without an entry table.
    bool Clear(short cubenr) const;
    bool Clear(char const* cubeName) const;
    /// Clears the cube, then removes it from the register.
    bool Delete(short cubenr) const;
    bool Delete(char const* cubeName) const;
    bool Remove(short cubenr) const;
    bool Remove(char const* cubeName) const;
    /// Removes the entry's row, then its file. The usage counter is not checked: see isCorrect. A file that cannot be
    /// removed stays, and the result is still true.
    bool Clear(short cubenr, short p, short m, short t, short u, bool zeroBased) const;
    bool Clear(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    /// The same as Clear of the entry.
    bool Delete(short cubenr, short p, short m, short t, short u, bool zeroBased) const;
    bool Delete(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    bool Remove(short cubenr, short p, short m, short t, short u, bool zeroBased) const;
    bool Remove(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;

    /// The entry's matrix, opened with the lock state; null when the entry or its file is missing
    /// or the file cannot be read. The caller owns it. Its display name is "Base [1,2,3,4]".
    TRkMatrix* Get(short cubenr, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const;
    TRkMatrix* Get(char const* cubeName, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const;
    /// Element `j` of row `i`, both zero-based whatever the flag says; -1.0 when the matrix cannot be opened. Throws
    /// TRkMatrixException outside the matrix. The small matrix object used for reading is released, not deleted.
    double Get(short cubenr, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const;
    double Get(
        char const* cubeName, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const;
    /// The header of the entry's file, see TRkMatrix::GetHeader; null when it cannot be read.
    TRkMatrixHeader const* GetHeader(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;

    /// Replaces the matrix of an entry that exists; row and usage counter are kept. When writing fails, the old matrix
    /// stays. False for a missing entry.
    bool Set(
        short cubenr, short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased);
    /// Clears the entry when it exists, registers cube and entry, and writes the file. When writing then fails, the old
    /// matrix and the usage counter are lost, and the entry stays without a file; cubes::EntryStore::put replaces a
    /// matrix without that risk. REQUIRES: the matrix is not bound to the entry's own file.
    bool Set(char const* cubeName, short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock,
        bool zeroBased);
    /// Writes the matrix to the file that the key names; the row is not read. Onto the matrix's own file it writes only
    /// when its state code is 11, and otherwise returns false. A matrix with state code 8 whose file is present is
    /// copied as a file; the result is false although the file was written. A matrix kind above 31 is kept, otherwise
    /// the file gets the cube's kind.
    bool SaveMatrix(
        TRkMatrix const& matrix, short cubenr, short p, short m, short t, short u, RkLockState lock, bool zeroBased);

    /// Raises or lowers the entry's count of users, never below 0; key parts are one-based. False for a missing entry
    /// or a table without the counter. Concurrent changes of several processes are all counted.
    bool incUsage(short cubenr, short p, short m, short t, short u);
    bool decUsage(short cubenr, short p, short m, short t, short u);
    /// Whether the entry exists and nobody uses it (its counter is null or 0, or not kept).
    bool isCorrect(short cubenr, short p, short m, short t, short u) const;

    /// Copies an entry, row and file, within or between cubes. The target's row is added with a counter of 0; an
    /// existing one is left unchanged. The target's file is replaced under its write lock. No counter is changed, and a
    /// copy shares nothing with its source.
    ///
    /// The cubes are checked first, as TRkBaseCubes::Copy says: it throws TRkCubesException for
    /// cubes, and by name it adds a target cube that is new. With `failIfExists` an existing target
    /// entry throws too: ecEntryExists by number, ecMatrixExists by name. Nothing is written then,
    /// but a cube that was added stays in the register.
    ///
    /// True also when there is no source entry, or a row names no file inside its directory: then no file is written.
    /// False when the check returns false, the entry table is missing, or the file cannot be copied or is the target's
    /// own; the target's row is kept then.
    bool Copy(short cubenr, short p, short m, short t, short u, short toCubenr, short toP, short toM, short toT,
        short toU, bool failIfExists, bool zeroBased) const;
    bool Copy(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP, short toM,
        short toT, short toU, bool failIfExists, bool zeroBased) const;
    /// The same from another catalogue, of another directory or database. Numbers and names of cubes are always those
    /// of the current project's register. An existing target entry throws ecCubeExists by number, ecEntryExists by
    /// name. By name onto an existing cube, the source entry is searched under the number that its cube's name has
    /// here.
    bool Copy(TRkMatCubes const& other, short cubenr, short p, short m, short t, short u, short toCubenr, short toP,
        short toM, short toT, short toU, bool failIfExists, bool zeroBased) const;
    bool Copy(TRkMatCubes const& other, char const* cubeName, short p, short m, short t, short u,
        char const* toCubeName, short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const;

    /// Like Copy, but moves the file, replacing an existing target file, and then deletes the source's row. An existing
    /// target entry throws ecCubeExists in every form. When the source file is missing, the target's file is kept and
    /// the result is false. Catalogues of two directories may share their table; an entry that keeps its key then has
    /// one row for both, and loses it.
    bool Move(short cubenr, short p, short m, short t, short u, short toCubenr, short toP, short toM, short toT,
        short toU, bool failIfExists, bool zeroBased) const;
    bool Move(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP, short toM,
        short toT, short toU, bool failIfExists, bool zeroBased) const;
    bool Move(TRkMatCubes const& other, short cubenr, short p, short m, short t, short u, short toCubenr, short toP,
        short toM, short toT, short toU, bool failIfExists, bool zeroBased) const;
    bool Move(TRkMatCubes const& other, char const* cubeName, short p, short m, short t, short u,
        char const* toCubeName, short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const;

protected:
    /// Fills the list with the entries of one cube; names stay empty. False without an entry table.
    bool GetOfCube(short cubenr, TRkAutoListT<TKey>& list) const;
};
