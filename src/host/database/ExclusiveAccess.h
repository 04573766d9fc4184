#pragma once

namespace Rktable {
class TRkTableProxy;
}

namespace cubes::database {

class Session;

/// Keeps all others from writing to a table until it is committed or goes out of scope, which
/// gives up what was done meanwhile. Others that read are not disturbed; others that write wait.
/// Neither copyable nor nestable.
class ExclusiveAccess {
public:
    /// REQUIRES: the cursor is open. Throws TRkDatabaseException when the table cannot be had.
    explicit ExclusiveAccess(Rktable::TRkTableProxy& table);
    ~ExclusiveAccess();
    ExclusiveAccess(ExclusiveAccess const&) = delete;
    ExclusiveAccess& operator=(ExclusiveAccess const&) = delete;

    /// Makes the changes last. Throws TRkDatabaseException when they are lost.
    void commit();

private:
    Session& session_;
    bool isOpen_ = true;
};

}
