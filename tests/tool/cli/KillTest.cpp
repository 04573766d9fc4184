// Changes of a project by processes that are killed at some call that changes the disk or reaches the server: each
// entry keeps its old matrix or has the new one, and what was removed stays removed. CUBES_TEST_KILLS sets how often.

#include "ToolSession.h"

#include "tool/routes/RouteFiles.h"

#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/Project.h>
#include <cubes/store/EntryStore.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <random>

namespace {

using namespace cubes::test;

constexpr int zones = 40;
constexpr int usualKills = 30;
constexpr int killedBySignal = 128 + 9;

/// The entries and what they hold: matrices of one value, routes over one link.
using State = std::map<std::string, int>;

/// A command and the states that it may leave when it is killed; the last one when it is not.
struct Change {
    std::string command;
    std::vector<State> states;
};

std::vector<std::string> const matrices = {
    "Base/1/1/1/1", "Base/2/1/1/1", "New/1/1/1/1", "skim/1/1/1/1/1/0", "skim/2/1/1/1/1/0"};
std::vector<std::string> const routes = {"routes/1/1/1/1/1/0", "routes/2/1/1/1/1/0"};

int killsWanted() {
    char const* const text = std::getenv("CUBES_TEST_KILLS");
    return text ? std::atoi(text) : usualKills;
}

class Kill : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session_.emplace(backend());
        session_->makeProject();
        ASSERT_EQ(session_->run("cubes add Base").exitCode, 0);
    }

    Change randomChange() {
        bool const ofRoutes = below(4) == 0;
        auto const& entries = ofRoutes ? routes : matrices;
        auto const& source = entries[below(entries.size())];
        auto const& target = entries[below(entries.size())];
        if (!state_.contains(source) || below(3) == 0) return put(source, ofRoutes);
        if (below(4) == 0) return removal(source);
        if (source == target) return removal(source);
        return below(2) == 0 ? copy(source, target) : move(source, target);
    }
    // Runs the change and kills it at a random call; returns whether it came so far.
    bool isKilledIn(Change const& change) {
        auto const verb = change.command.substr(0, change.command.find(' '));
        auto& calls = longest_.try_emplace(verb, 20).first->second;
        // The later calls are those that change more.
        auto const at = 1 + std::max(below(calls), below(calls));
        session_->write("calls", "");
        auto const result = session_->run("CUBES_DISK=$PWD CUBES_CALLS=$PWD/calls CUBES_KILL_AT=" + std::to_string(at) +
                                          " LD_PRELOAD=" CUBES_FAULTY_DISK " cubes " + change.command);
        calls = std::max(calls, session_->read("calls").size() + 5);
        if (result.exitCode == killedBySignal) return true;
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return false;
    }
    // What another process sees: each row has a file that can be read.
    State seen() const {
        State found;
        auto project = cubes::Project::open(session_->directory());
        for (auto const& entry : project.store().entries({})) found[entry.text] = valueOf(project.store(), entry);
        return found;
    }
    void expectFreeEntries() {
        for (auto const& entry : matrices) {
            auto const change = put(entry, false);
            EXPECT_EQ(session_->run("cubes " + change.command).exitCode, 0) << entry;
            state_ = change.states.back();
        }
        EXPECT_EQ(seen(), state_);
    }

    std::optional<ToolSession> session_;
    State state_;

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    Change put(std::string const& entry, bool isRoutes) {
        auto after = state_;
        after[entry] = ++lastValue_;
        auto const value = std::to_string(lastValue_);
        session_->write("put.csv", isRoutes ? routesOver(value) : matrixOf(value));
        return {(isRoutes ? "routes import put.csv " : "import put.csv ") + entry, {state_, after}};
    }
    Change removal(std::string const& entry) const {
        auto after = state_;
        after.erase(entry);
        return {"remove " + entry, {state_, after}};
    }
    Change copy(std::string const& source, std::string const& target) const {
        auto after = state_;
        after[target] = after.at(source);
        return {"copy " + source + " " + target, {state_, after}};
    }
    // The source's row goes with the commit, and until then the target's old row has the new file.
    Change move(std::string const& source, std::string const& target) const {
        auto between = state_;
        if (between.contains(target)) between[target] = between.at(source);
        auto after = state_;
        after[target] = after.at(source);
        after.erase(source);
        return {"move " + source + " " + target, {state_, between, after}};
    }

    static std::string matrixOf(std::string const& value) {
        std::string text = "zone";
        for (int zone = 1; zone <= zones; ++zone) text += "," + std::to_string(zone);
        for (int row = 1; row <= zones; ++row) {
            text += "\n" + std::to_string(row);
            for (int column = 1; column <= zones; ++column) text += "," + value;
        }
        return text + "\n";
    }
    static std::string routesOver(std::string const& link) {
        std::string text = "origin,destination,route,sequence,link,share\n";
        for (int zone = 1; zone <= zones; ++zone) text += "1," + std::to_string(zone) + ",1,1," + link + ",1\n";
        return text;
    }

    static int valueOf(cubes::EntryStore const& store, cubes::EntryInfo const& entry) {
        if (entry.text.starts_with("routes/")) return linkOf(entry.file);
        auto const matrix = store.get(entry.key);
        auto const elements = matrix.Elements();
        EXPECT_EQ(elements.size(), static_cast<std::size_t>(zones * zones)) << entry.text;
        EXPECT_TRUE(std::ranges::all_of(elements, [&](float element) { return element == elements.front(); }))
            << entry.text << " is torn";
        return static_cast<int>(elements.front());
    }
    static int linkOf(std::string const& file) {
        cubes::tool::RouteSetFile const set(file);
        EXPECT_EQ(set.size(), static_cast<std::size_t>(zones)) << file;
        auto const link = set.route(0).links.front();
        EXPECT_EQ(set.overLink(link).size(), set.size()) << file << " is torn";
        return static_cast<int>(link);
    }

    std::mt19937 random_{20260517};
    int lastValue_ = 0;
    std::map<std::string, std::size_t> longest_;
};

CUBES_BOTH_BACKENDS(Kill);

TEST_P(Kill, leavesTheOldMatrixOrTheNewOneAndEachRowWithItsFile) {
    int const wanted = killsWanted();
    int kills = 0;
    for (int change = 0; kills < wanted; ++change) {
        ASSERT_LT(change, 4 * wanted + 20) << "the processes are not killed";
        auto const next = randomChange();
        bool const isKilled = isKilledIn(next);
        kills += isKilled;
        auto const now = seen();
        auto const allowed = isKilled ? next.states : std::vector{next.states.back()};
        ASSERT_TRUE(std::ranges::find(allowed, now) != allowed.end())
            << (isKilled ? "killed in" : "after") << " change " << change << ": " << next.command << "\nbefore "
            << testing::PrintToString(state_) << "\nnow    " << testing::PrintToString(now);
        ASSERT_FALSE(HasFailure()) << next.command;
        state_ = now;
    }
    RecordProperty("kills", kills);
    expectFreeEntries();
    if (backend() == Backend::postgres) return;
    EXPECT_EQ(joined(session_->database().sql("PRAGMA integrity_check")), "ok\n");
}

}
