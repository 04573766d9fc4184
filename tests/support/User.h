#pragma once

namespace cubes::test {

/// Whether a process can become a user without write permission everywhere, or already is one.
bool canBeOrdinaryUser();
/// Becomes such a user. Call it in a child process.
void becomeOrdinaryUser();

}
