// The kinds of result cubes differ in what their entries are, and hardly in behaviour.

#include <cubes/varcubes/TRkCordonCube.h>
#include <cubes/varcubes/TRkPathCube.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>
#include <cubes/varcubes/TRkSkimCube.h>
#include <cubes/varcubes/TRkStop2StopCube.h>
#include <cubes/varcubes/TRkTransitCube.h>

#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include "catalogue/EntryFile.h"

namespace {

// The body of a selected-link matrix that has a file; null for any other matrix.
TRkVLSelectedLinkMatrix const* selectedLinkFile(TRkMatrix const& matrix) {
    auto const* const body = dynamic_cast<TRkVLSelectedLinkMatrix const*>(matrix.Body());
    return body && *body->FileName() ? body : nullptr;
}

// Copies the file unchanged, so that it stays a selected-link matrix and is not read or compressed again. False also
// onto the matrix's own file, which is left unchanged.
bool copyFlushed(TRkVLSelectedLinkMatrix const& matrix, TRkFString const& target) {
    matrix.Flush();
    return cubes::catalogue::copyMatrixFile(matrix.FileName(), target.str(), lsReadWrite);
}

}

RkCubeTypes const TRkSkimCube::CubeType = ctSkim;
RkMatrixType const TRkSkimCube::MatrixType = mtSkim;
char const* const TRkSkimCube::Ext = ".skm";

TRkSkimCube::TRkSkimCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkSkim, flag) {}

TRkSkimCube::TRkSkimCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag)
    : TRkVarCubes(settings, directory.c_str(), Ext, CubeType, MatrixType, mkSkim, flag) {}

TRkSkimCube::TRkSkimCube(TRkSkimCube const&) = default;
TRkSkimCube& TRkSkimCube::operator=(TRkSkimCube const&) = default;
TRkSkimCube::~TRkSkimCube() = default;

char const* TRkSkimCube::Name() const {
    return "skimcube";
}

RkCubeTypes const TRkSelectedLinkCube::CubeType = ctSelectedLink;
RkMatrixType const TRkSelectedLinkCube::MatrixType = mtSelectedLink;
char const* const TRkSelectedLinkCube::Ext = ".slm";

TRkSelectedLinkCube::TRkSelectedLinkCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkSelectedLink, flag) {}

TRkSelectedLinkCube::TRkSelectedLinkCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag)
    : TRkVarCubes(settings, directory.c_str(), Ext, CubeType, MatrixType, mkSelectedLink, flag) {}

TRkSelectedLinkCube::TRkSelectedLinkCube(TRkSelectedLinkCube const&) = default;
TRkSelectedLinkCube& TRkSelectedLinkCube::operator=(TRkSelectedLinkCube const&) = default;
TRkSelectedLinkCube::~TRkSelectedLinkCube() = default;

char const* TRkSelectedLinkCube::Name() const {
    return "selectedlinkcube";
}

bool TRkSelectedLinkCube::SaveMatrix(
    TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) {
    auto const* const links = selectedLinkFile(matrix);
    if (!links) return TRkVarCubes::SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
    return copyFlushed(*links, MatrixFile(p, m, t, u, r, i, zeroBased));
}

RkCubeTypes const TRkCordonCube::CubeType = ctCordon;
RkMatrixType const TRkCordonCube::MatrixType = mtCordon;
char const* const TRkCordonCube::Ext = ".cwm";

TRkCordonCube::TRkCordonCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkDefault, flag) {}

TRkCordonCube::TRkCordonCube(TRkGlobalSettings* settings, char const* directory, bool flag)
    : TRkVarCubes(settings, directory, Ext, CubeType, MatrixType, mkDefault, flag) {}

TRkCordonCube::TRkCordonCube(TRkCordonCube const&) = default;
TRkCordonCube& TRkCordonCube::operator=(TRkCordonCube const&) = default;
TRkCordonCube::~TRkCordonCube() = default;

char const* TRkCordonCube::Name() const {
    return "cordoncube";
}

RkCubeTypes const TRkScreenCube::CubeType = ctScreenLine;
RkMatrixType const TRkScreenCube::MatrixType = mtScreenLine;
char const* const TRkScreenCube::Ext = ".crm";

TRkScreenCube::TRkScreenCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkScreenLine, flag) {}

TRkScreenCube::TRkScreenCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag)
    : TRkVarCubes(settings, directory.c_str(), Ext, CubeType, MatrixType, mkScreenLine, flag) {}

TRkScreenCube::TRkScreenCube(TRkScreenCube const&) = default;
TRkScreenCube& TRkScreenCube::operator=(TRkScreenCube const&) = default;
TRkScreenCube::~TRkScreenCube() = default;

char const* TRkScreenCube::Name() const {
    return "screencube";
}

bool TRkScreenCube::SaveMatrix(
    TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) {
    auto const* const links = selectedLinkFile(matrix);
    if (!links) return TRkVarCubes::SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
    return copyFlushed(*links, MatrixFile(p, m, t, u, r, i, zeroBased));
}

RkCubeTypes const TRkTransitCube::CubeType = ctTransit;
RkMatrixType const TRkTransitCube::MatrixType = mtMatrixCube;
char const* const TRkTransitCube::Ext = ".tsm";

TRkTransitCube::TRkTransitCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkTransit, flag) {}

TRkTransitCube::TRkTransitCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag)
    : TRkVarCubes(settings, directory.c_str(), Ext, CubeType, MatrixType, mkTransit, flag) {}

TRkTransitCube::TRkTransitCube(TRkTransitCube const&) = default;
TRkTransitCube& TRkTransitCube::operator=(TRkTransitCube const&) = default;
TRkTransitCube::~TRkTransitCube() = default;

char const* TRkTransitCube::Name() const {
    return "transitcube";
}

RkCubeTypes const TRkPathCube::CubeType = ctPath;
RkMatrixType const TRkPathCube::MatrixType = mtMatrixCube;
char const* const TRkPathCube::Ext = ".ptm";

TRkPathCube::TRkPathCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkPath, flag) {}

TRkPathCube::TRkPathCube(TRkGlobalSettings* settings, TRkFString const& directory, bool flag)
    : TRkVarCubes(settings, directory.c_str(), Ext, CubeType, MatrixType, mkPath, flag) {}

TRkPathCube::TRkPathCube(TRkPathCube const&) = default;
TRkPathCube& TRkPathCube::operator=(TRkPathCube const&) = default;
TRkPathCube::~TRkPathCube() = default;

char const* TRkPathCube::Name() const {
    return "pathcube";
}

RkCubeTypes const TRkStop2StopCube::CubeType = ctStopToStop;
RkMatrixType const TRkStop2StopCube::MatrixType = mtStopToStop;
char const* const TRkStop2StopCube::Ext = ".s2s";

TRkStop2StopCube::TRkStop2StopCube(TRkGlobalSettings* settings, bool flag)
    : TRkVarCubes(settings, Ext, CubeType, MatrixType, mkStopToStop, flag) {}

TRkStop2StopCube::TRkStop2StopCube(TRkGlobalSettings* settings, char const* directory, bool flag)
    : TRkVarCubes(settings, directory, Ext, CubeType, MatrixType, mkStopToStop, flag) {}

TRkStop2StopCube::TRkStop2StopCube(TRkStop2StopCube const&) = default;
TRkStop2StopCube& TRkStop2StopCube::operator=(TRkStop2StopCube const&) = default;
TRkStop2StopCube::~TRkStop2StopCube() = default;

char const* TRkStop2StopCube::Name() const {
    return "stop2stopcube";
}
