#include "catalogue/ProjectCall.h"

#include "host/project/ProjectLink.h"

#include <cubes/database/TRkConnectionManager.h>
#include <cubes/project/TRkGlobalSettings.h>

namespace cubes::catalogue {

namespace {

thread_local int depth = 0;

}

ProjectCall::ProjectCall(TRkGlobalSettings const* settings) {
    if (depth++ > 0) return;
    auto const* const link = project::linkOf(settings);
    if (link) override_.emplace(link->connection);
}

ProjectCall::~ProjectCall() {
    --depth;
}

}
