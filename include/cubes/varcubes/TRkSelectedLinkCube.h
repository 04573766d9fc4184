#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of select link results: the trips over selected links.
class CUBES_API TRkSelectedLinkCube : public TRkVarCubes {
public:
    /// ctSelectedLink.
    static RkCubeTypes const CubeType;
    /// mtSelectedLink.
    static RkMatrixType const MatrixType;
    /// ".slm".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkSelectedLinkCube(TRkGlobalSettings* settings, bool flag);
    /// An empty directory is taken from the settings.
    TRkSelectedLinkCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkSelectedLinkCube(TRkGlobalSettings*, char const*) = delete;
    TRkSelectedLinkCube(TRkSelectedLinkCube const&);
    TRkSelectedLinkCube& operator=(TRkSelectedLinkCube const&);
    ~TRkSelectedLinkCube() override;

    /// "selectedlinkcube".
    char const* Name() const;

    /// A selected-link matrix that has a file is copied as a file to the one that the key names: true when that
    /// succeeded, false onto its own file. No row is written or read. Any other matrix is saved as in every result
    /// cube.
    bool SaveMatrix(TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock,
        bool zeroBased) override;
};
