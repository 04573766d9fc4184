#pragma once

/// The names inside an OMX file: the first five are OMX's, the others our own.
namespace cubes::matrix::omx {

inline constexpr char version[] = "OMX_VERSION";
inline constexpr char shape[] = "SHAPE";
inline constexpr char tables[] = "data";
inline constexpr char lookups[] = "lookup";
inline constexpr char zones[] = "zone";

inline constexpr char table[] = "matrix";
inline constexpr char index[] = "cubes_index";
inline constexpr char type[] = "cubes_type";
inline constexpr char kind[] = "cubes_kind";
inline constexpr char name[] = "cubes_name";
inline constexpr char selectedLink[] = "cubes_selected_link";
inline constexpr char checksum[] = "cubes_checksum";

}
