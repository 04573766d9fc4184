#pragma once

#include <string>

namespace cubes::test {

/// A PostgreSQL server for a single test, which can be stopped and started again.
class TestServer {
public:
    TestServer();
    ~TestServer();
    TestServer(TestServer const&) = delete;
    TestServer& operator=(TestServer const&) = delete;

    void stop();
    void start();
    /// The URL of the database that every server has.
    std::string url() const;
    std::string port() const;

private:
    void script(std::string const& action) const;

    std::string directory_;
};

}
