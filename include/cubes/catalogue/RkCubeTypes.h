#pragma once

/// The kind of cube that a catalogue serves. The negative ones are also the cube numbers of their entries. Any number
/// may be cast to it.
enum RkCubeTypes : int {
    ctMatrix = 0,
    ctSkim = -1,
    ctSelectedLink = -2,
    ctCordon = -3,
    ctScreenLine = -4,
    ctTransit = -5,
    ctPath = -6,
    ctStopToStop = -7,
    ctFare = -8,
    ctRouteSet = -9,
    ctRouteData = -10,
};
