// Rows that others add and clear while they are being added.

#include "catalogue/EntryTable.h"

#include "catalogue/CatalogueTest.h"

namespace cubes::test {
namespace {

class EntryTable : public CatalogueTest {
protected:
    void SetUp() override {
        CatalogueTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        table_ = catalogue().Open();
    }

    void append() {
        table_->Append();
        table_->FieldByName("cubenr")->SetAsInteger(1);
        table_->FieldByName("name")->SetAsString("ours");
    }
    /// Others add the row, as often as told, just before it is posted, and `isThere` meets that.
    template <typename IsThere>
    void addAfterOthers(int times, IsThere const& isThere) {
        auto const afterOthers = [&] {
            append();
            if (times-- > 0) project().execute("insert into cube values (1, 'theirs')");
        };
        addUnlessTaken(*table_, afterOthers, isThere);
    }
    bool isThere() { return table_->Locate("cubenr", 1); }
    bool isClearedAgain() {
        project().execute("delete from cube");
        return isThere();
    }

private:
    CountedPtr<Rktable::TRkTableProxy> table_;
};

CUBES_BOTH_BACKENDS(EntryTable);

TEST_P(EntryTable, takesARow) {
    addAfterOthers(0, [&] { return isThere(); });
    EXPECT_EQ(rows(), "1|ours\n");
}

TEST_P(EntryTable, isContentWithTheRowOfAnother) {
    addAfterOthers(1, [&] { return isThere(); });
    EXPECT_EQ(rows(), "1|theirs\n");
}

TEST_P(EntryTable, takesTheRowAnewWhenTheOthersIsGoneAgain) {
    addAfterOthers(1, [&] { return isClearedAgain(); });
    EXPECT_EQ(rows(), "1|ours\n");
}

TEST_P(EntryTable, passesADuplicateOnThatIsNotTheSameRow) {
    try {
        addAfterOthers(1, [] { return false; });
        ADD_FAILURE() << "added";
    } catch (TRkDatabaseException const& error) {
        EXPECT_TRUE(error.IsDuplicateKey());
    }
    EXPECT_EQ(rows(), "1|theirs\n");
}

}
}
