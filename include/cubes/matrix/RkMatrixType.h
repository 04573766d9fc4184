#pragma once

/// The element type recorded in a matrix file. Any number may be cast to it and passes through unchanged. Elements are
/// single-precision values for every type.
enum RkMatrixType : int {
    mtMatrixCube = 7,
    mtSelectedLink = 12,
    mtScreenLine = mtSelectedLink,
    mtSkim = 13,
    mtCordon = 16,
    mtFare = 23,
    mtStopToStop = mtFare,
};
