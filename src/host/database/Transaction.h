#pragma once

#include "host/database/Session.h"

namespace cubes::database {

/// A transaction that is rolled back unless it is committed. It holds the session's lock, so that no
/// other thread's statements get into it. Neither copyable nor nestable.
class Transaction {
public:
    /// `begin`: the SQL that starts it. Throws TRkDatabaseException.
    Transaction(Session& session, std::string const& begin) : lock_(session.lock()), session_(session) {
        session_.begin(begin);
    }
    ~Transaction() {
        if (isOpen_) session_.rollback();
    }
    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;

    /// Makes the changes last. Throws TRkDatabaseException when they are lost.
    void commit() {
        isOpen_ = false;
        session_.commit();
    }

private:
    std::unique_lock<std::recursive_mutex> lock_;
    Session& session_;
    bool isOpen_ = true;
};

}
