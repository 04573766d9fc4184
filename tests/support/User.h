#pragma once

namespace cubes::test {

/// Whether a process can become a user who may not write everywhere, or is one.
bool canBeOrdinaryUser();
/// In a process of its own: becomes one.
void becomeOrdinaryUser();

}
