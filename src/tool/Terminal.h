#pragma once

namespace cubes::tool {

/// Whether somebody watches: the stream of messages is a terminal.
bool messagesAreWatched();

}
