#include "support/TestServer.h"

#include "support/Process.h"
#include "support/TempDir.h"
#include "support/platform/ServerHost.h"

#include <random>
#include <stdexcept>

namespace cubes::test {

TestServer::TestServer() : directory_("/tmp/cubes-pg-own-" + std::to_string(std::random_device{}())) {
    script("setup");
}

TestServer::~TestServer() {
    run({CUBES_TEST_POSTGRES_SCRIPT, "remove", directory_});
}

void TestServer::script(std::string const& action) const {
    auto const result = run({CUBES_TEST_POSTGRES_SCRIPT, action, directory_});
    if (result.exitCode != 0) throw std::runtime_error("test server: " + action + ": " + result.errors);
}

void TestServer::stop() {
    script("stop");
}

void TestServer::start() {
    script("start");
}

std::string TestServer::port() const {
    std::string const text = readFile(directory_ + "/port");
    return text.substr(0, text.find('\n'));
}

std::string TestServer::url() const {
    return "postgresql://cubes@/postgres?host=" + serverHost(directory_) + "&port=" + port();
}

}
