// The checks before cubes are copied or moved. A move is its copy: the two differ only in name, so
// that derived catalogues can give them different meanings. The conditions of the three families
// differ on purpose.

#include <cubes/catalogue/TRkBaseCubes.h>

#include <cubes/core/TRkCubesException.h>

bool TRkBaseCubes::Copy(TRkBaseCubes const& source, bool failIfExists, short from, short to) const {
    if (!source.LookUp(from)) throw TRkCubesException(TRkCubesException::ecFromCubeMissing);
    if (to != from && failIfExists && to >= 0 && LookUp(to)) throw TRkCubesException(TRkCubesException::ecCubeExists);
    if (!LookUp(to)) throw TRkCubesException(TRkCubesException::ecToCubeMissing);
    return true;
}

bool TRkBaseCubes::Copy(bool failIfExists, short from, short to) const {
    return TRkBaseCubes::Copy(*this, failIfExists, from, to);
}

bool TRkBaseCubes::Move(TRkBaseCubes const& source, bool failIfExists, short& from, short& to) const {
    return TRkBaseCubes::Copy(source, failIfExists, from, to);
}

bool TRkBaseCubes::Move(bool failIfExists, short& from, short& to) const {
    return TRkBaseCubes::Copy(failIfExists, from, to);
}

bool TRkBaseCubes::Copy(char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    fromNr = CubeNameToNr(from);
    toNr = CubeNameToNr(to);
    if (fromNr < 1) return false;
    if (toNr < 1) {
        TRkBaseCubes::Add(to);
        toNr = CubeNameToNr(to);
        return toNr > 0;
    }
    if (toNr == fromNr && failIfExists) throw TRkCubesException(TRkCubesException::ecCubeExists);
    return true;
}

bool TRkBaseCubes::Move(char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    return TRkBaseCubes::Copy(from, to, failIfExists, fromNr, toNr);
}

bool TRkBaseCubes::Copy(
    TRkBaseCubes const& source, char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    fromNr = source.CubeNameToNr(from);
    toNr = CubeNameToNr(to);
    if (fromNr < 1) return false;
    if (toNr < 1) {
        TRkBaseCubes::Add(to);
        toNr = CubeNameToNr(to);
        return toNr > 0;
    }
    fromNr = CubeNameToNr(from);
    if (failIfExists && toNr != fromNr) throw TRkCubesException(TRkCubesException::ecCubeExists);
    return true;
}

bool TRkBaseCubes::Move(
    TRkBaseCubes const& source, char const* from, char const* to, bool failIfExists, short& fromNr, short& toNr) const {
    return TRkBaseCubes::Copy(source, from, to, failIfExists, fromNr, toNr);
}
