#pragma once

#include <cubes/Export.h>
#include <cubes/catalogue/TRkBaseCubes.h>

/// The register of cubes as an application sees it. Makes sure that every kind of result cube has
/// its reserved row, under a negative number that no user cube can take.
class CUBES_API TRkCubes : public TRkBaseCubes {
public:
    /// The reserved rows: the row of CubeTypes[i] has the name CubeNames[i].
    static char const* const CubeNames[6];
    static RkCubeTypes const CubeTypes[6];

    /// Constructs and calls Init(); a database error while it adds rows is thrown.
    explicit TRkCubes(TRkGlobalSettings* settings);
    TRkCubes(TRkCubes const&);
    TRkCubes& operator=(TRkCubes const&);
    ~TRkCubes() override;

    /// Adds the missing reserved rows; an existing one is left unchanged, whatever its name. False when the register
    /// cannot be opened.
    bool Init();
    /// All cubes of the register, including the reserved ones.
    bool Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const;
};
