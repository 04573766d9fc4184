#pragma once

#include <cubes/Export.h>
#include <cubes/catalogue/RkCubeTypes.h>
#include <cubes/database/TRkTableProxy.h>
#include <cubes/matrix/RkMatrixKind.h>
#include <cubes/matrix/RkMatrixType.h>
#include <cubes/text/AnsiString.h>
#include <cubes/text/CountedPtr.h>
#include <cubes/text/TRkAutoListT.h>
#include <cubes/text/TRkBase.h>
#include <cubes/text/TRkFString.h>
#include <cubes/text/TRkString.h>

class TRkDBDataDictionary;
class TRkGlobalSettings;

/// The base of every cube catalogue: the register table "cube", in which each cube of a project is one row with a
/// number and a name, and the properties that all catalogues have.
///
/// A catalogue holds no open cursor between calls. It does not own its settings and connection; copies share them. A
/// register that cannot be opened (no settings, no dictionary, no table) is reported by false, 0 or an empty text;
/// errors of the database pass through unchanged.
class CUBES_API TRkBaseCubes : public TRkBase {
public:
    /// One row of the register.
    struct CUBES_API TKey {
        TKey(short cubenr, char const* name);

        /// Number, comma, name: "3,Base".
        TRkString AsString() const;

        short cubenr;
        TRkString name;
    };

    /// Format version of new file names: above 3 the decimal form, otherwise the base-40 form. Can be changed at run
    /// time and is read at each call; existing rows keep their names.
    static int Version;
    /// The digits of the base-40 code, in order. It has no "u".
    static char const* const letters;
    /// The register table's name: "cube".
    static char const* const ObjectName;

    /// `extension`: of the catalogue's matrix files, with its point (null: none).
    /// `matrixDirectory`: null gives an empty path. `matrixFlag`: passed to new matrices.
    TRkBaseCubes(TRkGlobalSettings* settings, char const* matrixDirectory, char const* extension, RkCubeTypes cubeType,
        RkMatrixType matrixType, RkMatrixKind matrixKind, bool matrixFlag);
    TRkBaseCubes(TRkBaseCubes const&);
    TRkBaseCubes& operator=(TRkBaseCubes const&);
    ~TRkBaseCubes() override;

    /// Whether construction has finished.
    bool Ok() const override;
    virtual void SetConnection(Pgaccess::TPgConnection* connection);
    virtual Pgaccess::TPgConnection* GetConnection() const;

    TRkGlobalSettings* Settings();
    TRkGlobalSettings* Settings() const;
    void Settings(TRkGlobalSettings* settings);
    /// The dictionary in the settings; null when there is none or it is of another type.
    TRkDBDataDictionary* DataDictionary() const;
    /// Stores the dictionary in the settings; does nothing without settings.
    void DataDictionary(TRkDBDataDictionary* dictionary);
    TRkFString const& MatrixDirectory() const;
    AnsiString const& getMatrixSchema() const;
    void setMatrixSchema(AnsiString const& schema);
    /// Does nothing and returns false.
    bool Refresh();

    /// An open cursor on the register, over the current connection; empty when it cannot be opened.
    CountedPtr<Rktable::TRkTableProxy> Open() const;
    /// Closes the cursor and empties the pointer; false for an empty pointer.
    bool Close(CountedPtr<Rktable::TRkTableProxy>& table) const;
    /// Moves the cursor to the row of that number or name; false when there is none. A name is cut to the column's size
    /// first and compared without regard to letter case.
    bool LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr) const;
    bool LookUp(CountedPtr<Rktable::TRkTableProxy> table, char const* name) const;
    /// Whether the cube exists. A negative number means no particular cube and is always true,
    /// without asking the database.
    bool LookUp(short cubenr) const;
    /// Empty for an unknown number.
    TRkString CubeNrToName(short cubenr) const;
    /// 0 for an unknown name.
    short CubeNameToNr(char const* name) const;

    /// Registers a cube under the highest number in use plus one, at least 1; a cube of that name is left unchanged.
    /// True unless the register cannot be opened, the name is null or the numbers are used up. Processes may add cubes
    /// at the same time.
    bool Add(char const* name) const;
    /// Whether a cube exists. Unlike LookUp(short), a negative number is searched like any other.
    bool Check(char const* name) const;
    bool Check(short cubenr) const;
    bool Exist(char const* name) const;
    /// Removes the cube's row; true if there was one. Entries and files are not changed.
    bool Clear(char const* name) const;
    bool Clear(short cubenr) const;
    /// The same as Clear(name).
    bool Delete(char const* name);
    bool Remove(char const* name);
    /// Fills the list with all cubes, in the order of their numbers.
    bool Get(TRkAutoListT<TKey>& list) const;

    /// Checks before cubes are copied, by number; entries are not changed. Throws TRkCubesException: ecFromCubeMissing
    /// when the source does not have `from`; ecCubeExists when `failIfExists` and `to` is another, existing,
    /// non-negative cube; ecToCubeMissing when this catalogue does not have `to`. Negative numbers count as present.
    bool Copy(TRkBaseCubes const& source, bool failIfExists, short from, short to) const;
    bool Copy(bool failIfExists, short from, short to) const;
    bool Move(TRkBaseCubes const& source, bool failIfExists, short& from, short& to) const;
    bool Move(bool failIfExists, short& from, short& to) const;
    /// Checks by name within this catalogue and reports both numbers. False for an unknown source
    /// or null; an unknown target is added. Throws ecCubeExists when `failIfExists` and both names
    /// are the same cube.
    bool Copy(char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const;
    bool Move(char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const;
    /// Checks by name between two catalogues. As above, but when the target exists `fromNr`
    /// becomes the number of the name `from` in this catalogue, and ecCubeExists is thrown when
    /// `failIfExists` and that is not the target.
    bool Copy(TRkBaseCubes const& source, char const* from, char const* to, bool failIfExists, short& fromNr,
        short& toNr) const;
    bool Move(TRkBaseCubes const& source, char const* from, char const* to, bool failIfExists, short& fromNr,
        short& toNr) const;

    /// The two base-40 characters of a cube number, in a buffer that the next call overwrites.
    /// Throws TRkCubesException ecCubeNrOutOfRange outside 0 to 1599.
    static char* ShortTo40T(short nr);
    /// Decodes at most `count` characters from `start`; an unknown character counts as 0. The
    /// value is kept in 16 bits. 0 for a null text, a start beyond its end or a negative argument.
    static short cnvrt40TToShort(char const* text, int start, int count);

protected:
    TRkGlobalSettings* settings_;
    bool valid_ = false;
    bool matrixFlag_;
    RkCubeTypes cubeType_;
    RkMatrixType matrixType_;
    TRkFString matrixDirectory_;
    AnsiString matrixSchema_;
    TRkString extension_;
    RkMatrixKind matrixKind_;
    Pgaccess::TPgConnection* connection_;
};
