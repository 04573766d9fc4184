#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkException.h>

#include <string>

namespace cubes {

/// Why an operation of the store failed. Numbers are only ever added at the end.
enum class Reason {
    /// The entry, its cube or its file does not exist.
    notFound,
    alreadyExists,
    /// The usage counter of the entry is above 0.
    inUse,
    /// Another program or object is writing the entry's file.
    locked,
    /// The file cannot be read as a matrix.
    damaged,
    /// The matrix has other dimensions than required, or is not valid.
    wrongShape,
    /// The row names no file inside the project's directory.
    outsideDirectory,
    /// The entry's file belongs to another project that shares the database.
    otherDirectory,
    noSpace,
    /// The database, the directory or the file may not be written.
    readOnly,
    /// Any other error of the database.
    database,
    noProvider,
    /// The key or its text is not valid for what was asked.
    invalidKey,
    /// Any other error of the file system, or too little memory for a file.
    file,
};

/// The name of a reason as it is written in code: "notFound".
CUBES_API char const* nameOf(Reason reason) noexcept;

/// What the store throws. what() reads "cannot store Trips/1/1/1/1: no space left on device; ..."
class CUBES_API StoreError : public TRkException {
public:
    /// `action`: what was asked, with the entry: "store Trips/1/1/1/1".
    StoreError(
        Reason reason, std::string const& action, std::string cause, std::string entry = {}, std::string file = {});
    StoreError(StoreError const&);
    StoreError& operator=(StoreError const&);
    ~StoreError() override;

    Reason reason() const noexcept { return reason_; }
    /// The text of the entry's key; empty when it is about none.
    std::string const& entry() const noexcept { return entry_; }
    /// The full path of the file; empty when it is about none.
    std::string const& file() const noexcept { return file_; }
    /// What went wrong, with the system's or the database's own message and without what was asked.
    std::string const& cause() const noexcept { return cause_; }

private:
    Reason reason_;
    std::string entry_;
    std::string file_;
    std::string cause_;
};

}
