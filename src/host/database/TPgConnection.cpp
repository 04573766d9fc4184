#include <cubes/database/TPgConnection.h>

#include "host/database/Session.h"

namespace Pgaccess {

TPgConnection::TPgConnection(std::string const& url) : session_(cubes::database::Session::open(url)) {}

TPgConnection::~TPgConnection() = default;

std::string const& TPgConnection::Url() const noexcept {
    return session_->url();
}

void TPgConnection::Execute(std::string const& sql) {
    session_->catalog().forgetAll();
    session_->execute(sql);
}

}
