#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of screen-line results: the trips that cross a screen line.
class CUBES_API TRkScreenCube : public TRkVarCubes {
public:
    /// ctScreenLine.
    static RkCubeTypes const CubeType;
    /// mtScreenLine.
    static RkMatrixType const MatrixType;
    /// ".crm".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkScreenCube(TRkGlobalSettings* settings, bool flag);
    /// An empty directory is taken from the settings.
    TRkScreenCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkScreenCube(TRkGlobalSettings*, char const*) = delete;
    TRkScreenCube(TRkScreenCube const&);
    TRkScreenCube& operator=(TRkScreenCube const&);
    ~TRkScreenCube() override;

    /// "screencube".
    char const* Name() const;

    /// A selected-link matrix that has a file is copied as a file to the one that the key names: true when that
    /// succeeded, false onto its own file. No row is written or read. Any other matrix is saved as in every result
    /// cube.
    bool SaveMatrix(TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock,
        bool zeroBased) override;
};
