#include "support/Damage.h"

#include "support/Process.h"

#include <gtest/gtest.h>

namespace cubes::test {

void PrintTo(Damage const& damage, std::ostream* out) {
    *out << damage.name;
}

void damage(std::string const& file, char const* program) {
    auto const done = runPython(std::string(R"(
import h5py, sys
flips = []
flip = flips.append
with h5py.File(sys.argv[1], 'r+') as f:
    table = f['data/matrix'] if 'data' in f else None
    )") + program + R"(
with open(sys.argv[1], 'r+b') as f:
    for offset in flips:
        f.seek(offset)
        byte = f.read(1)[0]
        f.seek(offset)
        f.write(bytes([byte ^ 16]))
)",
        {file});
    ASSERT_EQ(done.exitCode, 0) << program << "\n" << done.errors;
}

}
