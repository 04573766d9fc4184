#pragma once

#include <stdexcept>

namespace cubes::tool {

/// Something that was named is not there, or must not be done.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The command line makes no sense.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Something that should have worked did not: the database, the disk, a file.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}
