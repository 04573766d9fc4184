#include <cubes/database/TRkConnectionManager.h>

#include "host/database/CurrentConnection.h"
#include "host/database/Session.h"

#include <cubes/database/TPgConnection.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>
#include <vector>

namespace cubes::database {

namespace {

using Pgaccess::TPgConnection;

// The numbers of the open connections.
struct OpenConnections {
    std::mutex mutex;
    std::vector<std::uint64_t> numbers;
};

// Never destroyed: connections may be closed while the process ends.
OpenConnections& openConnections() {
    static auto& connections = *new OpenConnections;
    return connections;
}

std::atomic<TPgConnection*> processWide = nullptr;
std::atomic<std::uint64_t> setCount = 0;
std::atomic<std::uint64_t> destroyed = 0;
constinit thread_local ThreadConnection ofThisThread;

ThreadConnection holding(TPgConnection* connection, std::uint64_t ignoredSets) noexcept {
    return {connection, connection ? connection->Backend().number() : 0, destroyed.load(), ignoredSets};
}

bool isOpen(std::uint64_t number) {
    auto& open = openConnections();
    std::lock_guard const lock(open.mutex);
    return std::ranges::find(open.numbers, number) != open.numbers.end();
}

// A thread whose connection was destroyed has set none. The list of connections is only read when
// one was destroyed since the last call.
void dropDestroyed(ThreadConnection& held) noexcept {
    std::uint64_t const now = destroyed.load();
    if (!held.connection || held.checkedAt == now) return;
    if (isOpen(held.number))
        held.checkedAt = now;
    else
        held = {};
}

}

CurrentConnection::CurrentConnection(TPgConnection* connection) noexcept : before_(ofThisThread) {
    ofThisThread = holding(connection, std::numeric_limits<std::uint64_t>::max());
}

CurrentConnection::~CurrentConnection() {
    ofThisThread = before_;
}

void announceOpened(std::uint64_t number) {
    auto& open = openConnections();
    std::lock_guard const lock(open.mutex);
    open.numbers.push_back(number);
}

void announceClosing(TPgConnection& connection) noexcept {
    {
        auto& open = openConnections();
        std::lock_guard const lock(open.mutex);
        std::erase(open.numbers, connection.Backend().number());
    }
    TPgConnection* closing = &connection;
    processWide.compare_exchange_strong(closing, nullptr);
    ++destroyed;
}

TPgConnection* ownOfThisThread() noexcept {
    dropDestroyed(ofThisThread);
    return ofThisThread.connection;
}

TPgConnection* current() noexcept {
    if (TPgConnection* const own = ownOfThisThread()) return own;
    return setCount.load() > ofThisThread.ignoredSets ? processWide.load() : nullptr;
}

void setCurrent(TPgConnection& connection) noexcept {
    ofThisThread = holding(&connection, 0);
    processWide = &connection;
    ++setCount;
}

void setNone() noexcept {
    TPgConnection* own = ownOfThisThread();
    if (own) processWide.compare_exchange_strong(own, nullptr);
    ofThisThread = holding(nullptr, setCount.load());
}

}

Pgaccess::TPgConnection* TRkConnectionManager::CurrentConnection() const noexcept {
    return cubes::database::current();
}

void TRkConnectionManager::SetCurrentConnection(Pgaccess::TPgConnection* connection) noexcept {
    connection ? cubes::database::setCurrent(*connection) : cubes::database::setNone();
}

TRkConnectionManager& getConnectionManagerInstance() {
    static TRkConnectionManager manager;
    return manager;
}
