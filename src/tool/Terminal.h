#pragma once

#include "host/platform/System.h"

namespace cubes::tool {

using platform::messagesAreWatched;
using platform::prepareStreams;
using platform::readerWentAway;

}
