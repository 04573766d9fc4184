#pragma once

#include <cubes/text/TRkObject.h>

#include <string>

class TRkGlobalSettings;

namespace cubes::project {

/// The schema that a project leaves in its settings.
class SchemaName : public TRkObject {
public:
    std::string text;
};

inline constexpr char const* schemaKey = "cubes.ProjectSchema";

/// The SQL schema of the result cubes of the project that the settings belong to: the one an open
/// project has left in them, else the one in the "cubes.toml" above the working directory, else
/// the one formed from that directory's name. Throws what the last two throw.
std::string projectSchema(TRkGlobalSettings const& settings);

}
