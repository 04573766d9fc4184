#pragma once

#include <cubes/text/TRkBase.h>

#include <string>

class TRkGlobalSettings;
namespace Pgaccess {
class TPgConnection;
}

namespace cubes::project {

/// Stored by an open project in its settings, so that every object made with them belongs to it.
class ProjectLink : public TRkObject {
public:
    Pgaccess::TPgConnection* connection = nullptr;
    /// The SQL schema of the project's results.
    std::string schema;

    static constexpr char const* key = "cubes.Project";
};

/// Null for settings that no open project has made, and for null.
ProjectLink const* linkOf(TRkGlobalSettings const* settings);

/// The SQL schema of the results of the project that the settings belong to: that of the open project, or the one in
/// the "cubes.toml" above the working directory, or the one formed from that directory's name. Throws
/// TRkProjectException for a "cubes.toml" that cannot be read, TRkException for a directory without a name.
std::string projectSchema(TRkGlobalSettings const& settings);

}
