#include "host/project/ProjectLink.h"

#include "host/platform/Paths.h"
#include "host/project/ProjectFile.h"

#include <cubes/project/ProjectPathHelpers.h>
#include <cubes/project/ProjectUtils.h>
#include <cubes/project/TRkGlobalSettings.h>

namespace cubes::project {

ProjectLink const* linkOf(TRkGlobalSettings const* settings) {
    return settings ? dynamic_cast<ProjectLink const*>(settings->Get(ProjectLink::key)) : nullptr;
}

std::string projectSchema(TRkGlobalSettings const& settings) {
    if (auto const* const link = linkOf(&settings)) return link->schema;
    std::string const root = ProjectPathHelpers::getProjectDirectory(settings.WorkingDirectory().c_str()).c_str();
    if (isProject(root)) {
        std::string const written = readProjectFile(root).schema;
        if (!written.empty()) return written;
    }
    return ProjectUtils::toSqlSchemaName(AnsiString(root + platform::pathDelimiter()), {}).c_str();
}

}
