#pragma once

namespace cubes::tool {

/// Makes results and messages leave as the bytes that they are, and a terminal show them so.
void prepareStreams();

/// Whether somebody watches: the stream of messages is a terminal.
bool messagesAreWatched();

/// Whether the last write failed because nobody reads any more.
bool readerWentAway();

}
