#pragma once

/// The kind recorded in a matrix file, named after the cubes that use it. Any number may be cast to it and passes
/// through unchanged; a kind above 31 is kept when its matrix is saved into a four-key cube.
enum RkMatrixKind : int {
    mkDefault = 0,
    mkSkim = 2,
    mkSelectedLink = 3,
    mkScreenLine = 5,
    mkTransit = 6,
    mkPath = 7,
    mkStopToStop = 8,
};
