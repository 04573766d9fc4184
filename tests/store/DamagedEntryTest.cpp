// Entries whose files were damaged or changed by another program.

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/project/Project.h>
#include <cubes/store/EntryStore.h>

#include "host/matrix/StagedFile.h"
#include "support/Backend.h"
#include "support/Damage.h"

#include <filesystem>
#include <functional>

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class DamagedEntry : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        project_ = std::make_unique<TestProject>(backend());
        store().addCube("Trips");
    }

    void put(Storage storage) {
        setMatrixStorage(project_->matrixDirectory(), {storage, Durability::process});
        TRkMatrix matrix = TRkMatrix::inMemory(3, 3);
        for (int row = 0; row < 3; ++row) matrix.WritableRow(row)[0] = static_cast<float>(row + 1);
        matrix.SetZones({101, 102, 103});
        store().put(trips_, matrix);
    }

    EntryStore& store() { return project_->project().store(); }
    std::string file(EntryKey const& key) { return store().find(key).value().file; }

    EntryKey const trips_{1, 1, 1, 1, 1};
    EntryKey const other_{1, 2, 1, 1, 1};
    EntryKey const skim_{-1, 1, 1, 1, 1, 1, 1};
    std::unique_ptr<TestProject> project_;
};

CUBES_BOTH_BACKENDS(DamagedEntry);

struct Use {
    char const* task;
    std::function<void(EntryStore&, EntryKey const&)> run;
};

Use const uses[] = {
    {"cannot read Trips/1/1/1/1: ", [](EntryStore& store, EntryKey const& key) { store.get(key, {.verify = true}); }},
    {"cannot store Trips/2/1/1/1: ",
        [](EntryStore& store, EntryKey const& key) {
            store.put({1, 2, 1, 1, 1}, store.get(key));
        }},
    {"cannot store skim/1/1/1/1/1/1: ",
        [](EntryStore& store, EntryKey const& key) {
            store.put({-1, 1, 1, 1, 1, 1, 1}, store.get(key));
        }},
    {"cannot copy Trips/1/1/1/1 to skim/1/1/1/1/1/1: ",
        [](EntryStore& store, EntryKey const& key) {
            store.copy(key, {-1, 1, 1, 1, 1, 1, 1});
        }},
    {"cannot move Trips/1/1/1/1 to skim/1/1/1/1/1/1: ",
        [](EntryStore& store, EntryKey const& key) {
            store.move(key, {-1, 1, 1, 1, 1, 1, 1});
        }},
};

TEST_P(DamagedEntry, isRefusedWhereverAllOfItIsRead) {
    for (auto const storage : {Storage::plain, Storage::deflate})
        for (Damage const& change : damages) {
            put(storage);
            damage(file(trips_), change.program);
            std::string const before = readFile(file(trips_));
            for (Use const& use : uses) {
                SCOPED_TRACE(std::string(use.task) + change.name);
                try {
                    use.run(store(), trips_);
                    ADD_FAILURE() << "nothing was thrown";
                } catch (StoreError const& error) {
                    std::string const message = error.what();
                    EXPECT_EQ(nameOf(error.reason()), std::string("damaged"));
                    EXPECT_TRUE(message.starts_with(use.task)) << message;
                    bool const isReadable = message.find("a compressed chunk is damaged") == std::string::npos;
                    EXPECT_EQ(isReadable, storage == Storage::plain || change.name != std::string("byteOfTheElements"));
                    if (isReadable) {
                        EXPECT_EQ(error.file(), file(trips_));
                        EXPECT_NE(
                            message.find(file(trips_) + " was changed outside Cubes or damaged"), std::string::npos)
                            << message;
                    }
                }
            }
            EXPECT_FALSE(store().find(other_));
            EXPECT_FALSE(store().find(skim_));
            EXPECT_EQ(readFile(file(trips_)), before);
        }
}

// Otherwise a plain file would have to be read before it is needed.
TEST_P(DamagedEntry, isGivenUnverifiedUnlessTheCallerAsks) {
    put(Storage::plain);
    damage(file(trips_), "table[0, 1] = 12.5");
    EXPECT_EQ(store().get(trips_).Row(0)[1], 12.5f);
}

// A copy of the bytes keeps the checksum, so it counts as damaged as well.
TEST_P(DamagedEntry, isCopiedAndMovedWithItsOldChecksum) {
    put(Storage::plain);
    auto const recorded = matrix::readOrigin(file(trips_))->content;
    damage(file(trips_), "table[0, 1] = 12.5");
    store().copy(trips_, other_);
    store().move(trips_, {1, 3, 1, 1, 1});
    for (EntryKey const& key : {other_, EntryKey(1, 3, 1, 1, 1)}) {
        EXPECT_EQ(matrix::readOrigin(file(key))->content, recorded);
        EXPECT_THROW(store().get(key, {.verify = true}), StoreError);
    }
}

TEST_P(DamagedEntry, isReplacedAndIntactAgain) {
    put(Storage::plain);
    damage(file(trips_), "table[0, 1] = 12.5");
    put(Storage::plain);
    EXPECT_EQ(store().get(trips_, {.verify = true}).Row(0)[1], 0.0f);
}

// A matrix that the caller has changed in memory is the caller's.
TEST_P(DamagedEntry, isNotAnIntactEntryThatTheCallerHasChanged) {
    put(Storage::plain);
    TRkMatrix matrix = store().get(trips_);
    matrix.WritableRow(0)[1] = 7;
    store().put(other_, matrix);
    store().put(skim_, matrix);
    store().put(trips_, matrix);
    for (EntryKey const& key : {trips_, other_, skim_}) EXPECT_EQ(store().get(key, {.verify = true}).Row(0)[1], 7.0f);
}

}
}
