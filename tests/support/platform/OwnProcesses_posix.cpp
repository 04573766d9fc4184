#include "support/OwnProcesses.h"

#include "support/Forked.h"

namespace cubes::test {

int inOwnProcesses(int count, OwnWork work, std::string const& text) {
    return inProcesses(count, [&](int number) { work(text, number); });
}

}
