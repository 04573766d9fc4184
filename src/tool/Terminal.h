#pragma once

#include "host/platform/Interruption.h"
#include "host/platform/System.h"

namespace cubes::tool {

using platform::interruption;
using platform::messagesAreWatched;
using platform::noteInterruptions;
using platform::prepareStreams;
using platform::readerWentAway;

}
