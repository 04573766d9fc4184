#pragma once

/// Requests to end this process: SIGINT, SIGTERM and SIGHUP; on Windows Ctrl+C, Ctrl+Break and the end of the session.
namespace cubes::platform {

/// From now on the first request is only noted, so that work can end cleanly; the next one ends the process at once.
/// Requests that the process was started to ignore stay ignored.
void noteInterruptions();

/// The number of the signal that was noted (SIGTERM for every request of Windows but Ctrl+C); 0 for none.
int interruption() noexcept;

}
