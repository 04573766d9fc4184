#pragma once

#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/core/TRkCubesException.h>
#include <cubes/matrix/TRkMatrix.h>

#include <memory>
#include <string>

namespace cubes::test {

/// A matrix of 2 rows and 3 columns, asymmetric: `first`, 1 more for each column, 10 more for each row.
inline TRkMatrix smallMatrix(float first) {
    TRkMatrix made = TRkMatrix::inMemory(2, 3);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 3; ++column)
            made.RowAt(row, 8)[column] = first + static_cast<float>(10 * row + column);
    return made;
}

/// The first element of a matrix; -1 for null.
inline double firstElementOf(std::unique_ptr<TRkMatrix> const& matrix) {
    return matrix ? matrix->RowAt(0, 8)[0] : -1.0;
}

/// The message of the cube error that the call throws; "none" when it throws none.
template <typename Call>
std::string cubeErrorOf(Call const& call) {
    try {
        call();
    } catch (TRkCubesException const& error) {
        return error.what();
    }
    return "none";
}

/// Sets the version that decides the form of new file names, and resets it at the end of the block.
class VersionGuard {
public:
    explicit VersionGuard(int version) : before_(TRkBaseCubes::Version) { TRkBaseCubes::Version = version; }
    ~VersionGuard() { TRkBaseCubes::Version = before_; }
    VersionGuard(VersionGuard const&) = delete;
    VersionGuard& operator=(VersionGuard const&) = delete;

private:
    int before_;
};

}
