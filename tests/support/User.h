#pragma once

namespace cubes::test {

/// Whether a process can become a user who may not write everywhere, or is one.
bool canBeOrdinaryUser();
/// Becomes such a user. Call it in a child process.
void becomeOrdinaryUser();

}
