#pragma once

#include <cubes/Export.h>
#include <cubes/varcubes/TRkVarCubes.h>

/// The cube of transit results.
class CUBES_API TRkTransitCube : public TRkVarCubes {
public:
    /// ctTransit.
    static RkCubeTypes const CubeType;
    /// mtMatrixCube.
    static RkMatrixType const MatrixType;
    /// ".tsm".
    static char const* const Ext;

    /// Takes the matrix directory from the settings. `flag`: passed to new matrices.
    TRkTransitCube(TRkGlobalSettings* settings, bool flag);
    /// An empty directory is taken from the settings.
    TRkTransitCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag);
    /// Deleted: a text is not a flag.
    TRkTransitCube(TRkGlobalSettings*, char const*) = delete;
    TRkTransitCube(TRkTransitCube const&);
    TRkTransitCube& operator=(TRkTransitCube const&);
    ~TRkTransitCube() override;

    /// "transitcube".
    char const* Name() const;
};
