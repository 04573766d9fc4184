#pragma once

#include <string>

namespace cubes::database {

class Session;

/// The register and the entry tables of a project.
///
/// Makes those that are missing: the register, the four-key entries in schema "public" and the
/// six-key entries in `schema`. What exists is left as it is. Several processes may do so at once.
void makeMissingTables(Session& session, std::string const& schema);

/// Whether a schema holds six-key entries, so that it belongs to a project.
bool belongsToProject(Session& session, std::string const& schema);

}
