#include "host/database/CurrentConnection.h"

#include "support/TempDir.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace {

using cubes::database::CurrentConnection;
using Pgaccess::TPgConnection;

TPgConnection* current() {
    return getConnectionManagerInstance().CurrentConnection();
}

void setCurrent(TPgConnection* connection) {
    getConnectionManagerInstance().SetCurrentConnection(connection);
}

template <typename Work>
void inAnotherThread(Work const& work) {
    std::thread(work).join();
}

class ConnectionManager : public testing::Test {
protected:
    void TearDown() override { setCurrent(nullptr); }

    cubes::test::TempDir directory;
    TPgConnection first{"sqlite:" + directory.file("first.db")};
    TPgConnection second{"sqlite:" + directory.file("second.db")};
};

TEST_F(ConnectionManager, returnsTheConnectionThatThisThreadSet) {
    EXPECT_EQ(current(), nullptr);
    setCurrent(&first);
    inAnotherThread([this] { setCurrent(&second); });
    EXPECT_EQ(current(), &first);
}

TEST_F(ConnectionManager, returnsTheLastOneSetAnywhereToAThreadThatSetNone) {
    setCurrent(&first);
    inAnotherThread([this] { EXPECT_EQ(current(), &first); });
    inAnotherThread([this] { setCurrent(&second); });
    inAnotherThread([this] { EXPECT_EQ(current(), &second); });
}

TEST_F(ConnectionManager, nullClearsTheProcessWideConnectionOfThisThread) {
    setCurrent(&first);
    setCurrent(nullptr);
    EXPECT_EQ(current(), nullptr);
    inAnotherThread([] { EXPECT_EQ(current(), nullptr); });
}

TEST_F(ConnectionManager, nullDoesNotClearTheConnectionsOfOtherThreads) {
    setCurrent(&first);
    inAnotherThread([this] { setCurrent(&second); });
    setCurrent(nullptr);
    EXPECT_EQ(current(), nullptr);
    inAnotherThread([this] { EXPECT_EQ(current(), &second); });
    inAnotherThread([this] { setCurrent(&first); });
    EXPECT_EQ(current(), &first);
}

TEST_F(ConnectionManager, forgetsADestroyedConnectionInEveryThread) {
    std::optional<TPgConnection> third(std::in_place, "sqlite:" + directory.file("third.db"));
    setCurrent(&*third);
    inAnotherThread([&] {
        setCurrent(&*third);
        inAnotherThread([&] { third.reset(); });
        EXPECT_EQ(current(), nullptr);
        // A new connection at the same address is a different one.
        third.emplace("sqlite:" + directory.file("fourth.db"));
        EXPECT_EQ(current(), nullptr);
    });
    EXPECT_EQ(current(), nullptr);
    inAnotherThread([this] { setCurrent(&second); });
    EXPECT_EQ(current(), &second);
}

TEST_F(ConnectionManager, scopeSetsThisThreadsConnectionOnlyAndRestoresIt) {
    setCurrent(&first);
    {
        CurrentConnection const outer(&second);
        EXPECT_EQ(current(), &second);
        inAnotherThread([this] { EXPECT_EQ(current(), &first); });
        {
            CurrentConnection const inner(nullptr);
            inAnotherThread([this] { setCurrent(&second); });
            EXPECT_EQ(current(), nullptr);
        }
        EXPECT_EQ(current(), &second);
    }
    EXPECT_EQ(current(), &first);
}

TEST_F(ConnectionManager, scopeDoesNotRestoreADestroyedConnection) {
    std::optional<TPgConnection> third(std::in_place, "sqlite:" + directory.file("third.db"));
    setCurrent(&*third);
    {
        CurrentConnection const scope(&first);
        third.reset();
        EXPECT_EQ(current(), &first);
    }
    EXPECT_EQ(current(), nullptr);
}

}
