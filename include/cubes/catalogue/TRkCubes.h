#pragma once

#include <cubes/Export.h>
#include <cubes/catalogue/TRkBaseCubes.h>

/// The register of cubes as an application sees it. Makes sure that every kind of result cube has
/// its reserved row, under a negative number that no user cube can take.
class CUBES_API TRkCubes : public TRkBaseCubes {
public:
    /// The reserved rows: CubeNames[i] stands under the number CubeTypes[i].
    static char const* const CubeNames[6];
    static RkCubeTypes const CubeTypes[6];

    /// Constructs and calls Init(); a database error while it adds rows passes out.
    explicit TRkCubes(TRkGlobalSettings* settings);
    TRkCubes(TRkCubes const&);
    TRkCubes& operator=(TRkCubes const&);
    ~TRkCubes() override;

    /// Adds the reserved rows that are missing; one that exists is left as it is, whatever its
    /// name. False when the register cannot be opened.
    bool Init();
    /// All cubes of the register, the reserved ones among them.
    bool Get(TRkAutoListT<TRkBaseCubes::TKey>& list) const;
};
