#include <cubes/database/TPgConnection.h>

#include "host/database/CurrentConnection.h"
#include "host/database/Session.h"

namespace Pgaccess {

TPgConnection::TPgConnection(std::string const& url) : session_(cubes::database::Session::open(url)) {
    cubes::database::announceOpened(session_->number());
}

TPgConnection::~TPgConnection() {
    cubes::database::announceClosing(*this);
}

std::string const& TPgConnection::Url() const noexcept {
    return session_->url();
}

void TPgConnection::Execute(std::string const& sql) {
    auto const held = session_->lock();
    session_->systemTables().forgetAll();
    session_->execute(sql);
}

}
