#include <filesystem>

#include "routestorage/RouteCubeTest.h"

namespace cubes::test {
namespace {

class FieldMetadata : public RouteCubeTest {
protected:
    // The fields of 1/2/3/4/5/6: "name type precision size" per line.
    std::string fields() {
        Reference<Metadata::Vector<Metadata::Field*>> const list(data().getFieldMetadata(1, 2, 3, 4, 5, 6));
        std::string text;
        for (std::size_t i = 0; i < list->size(); ++i) text += show(*(*list)[i]) + "\n";
        return text;
    }
    static std::string show(Metadata::Field const& field) {
        Reference<Metadata::MetadataStringInterface> const name(field.getName());
        Reference<Metadata::MetadataStringInterface> const type(field.getType());
        Reference<Metadata::MetadataLongInterface> const precision(field.getPrecision());
        Reference<Metadata::MetadataUnsignedLongInterface> const size(field.getSize());
        return std::string(name->get()) + " " + type->get() + " " + std::to_string(precision->get()) + " " +
               std::to_string(size->get());
    }
    void storeEntry() {
        store(data(), 6);
        fake.calls();
    }

    FakeProvider fake;
};

CUBES_BOTH_BACKENDS(FieldMetadata);

TEST_P(FieldMetadata, listsTypesByNameAndASizeForBytesOnly) {
    storeEntry();
    fake.setFields("t0,t1,t2,t3,t4,t5,t6,t-1,t100");
    EXPECT_EQ(fields(), "t0 boolean 0 0\nt1 bytes 0 1\nt2 smalint 0 0\nt3 integer 0 0\nt4 float 0 0\n"
                        "t5 double 0 0\nt6 unknown 0 0\nt-1 unknown 0 0\nt100 unknown 0 0\n");
}

TEST_P(FieldMetadata, opensTheFileForReading) {
    storeEntry();
    fake.setFields("\"a, 3\",b2");
    EXPECT_EQ(fields(), "a, 3 integer 0 0\nb2 smalint 0 0\n");
    EXPECT_EQ(fake.calls(), "data.make 1-2-3-4-5-6.FDB\ndata.open 0 without settings\ndata.getAdditionalDataHeader\n"
                            "header.getFieldNames\nheader.getFieldType a, 3\nheader.getFieldType b2\n"
                            "header.release -1\ndata.release -1\n");
    EXPECT_EQ(fake.living(), 0);
}

TEST_P(FieldMetadata, isEmptyWithoutNamesOrHeader) {
    storeEntry();
    for (char const* const names : {"", " ", "null", static_cast<char const*>(nullptr)}) {
        fake.setFields(names);
        EXPECT_EQ(fields(), "");
        EXPECT_EQ(fake.living(), 0);
    }
}

TEST_P(FieldMetadata, isEmptyForMissingEntriesAndFiles) {
    fake.setFields("a");
    EXPECT_EQ(fields(), "");
    storeEntry();
    std::filesystem::remove(dataFile(6));
    EXPECT_EQ(fields(), "");
    EXPECT_EQ(fake.calls(), "");
}

TEST_P(FieldMetadata, isEmptyWhenTheProviderHasNoFactories) {
    storeEntry();
    FakeProvider without("without");
    EXPECT_EQ(fields(), "");
}

TEST_P(FieldMetadata, isReadFromEntriesInUse) {
    storeEntry();
    fake.setFields("a5");
    data().incUsage(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(fields(), "a5 double 0 0\n");
}

TEST_P(FieldMetadata, isOwnedByTheCaller) {
    storeEntry();
    fake.setFields("a5");
    auto* const list = data().getFieldMetadata(1, 2, 3, 4, 5, 6);
    Metadata::Field* const field = (*list)[0];
    field->addRef();
    EXPECT_EQ(list->release(), 0);
    EXPECT_EQ(show(*field), "a5 double 0 0");
    EXPECT_EQ(field->release(), 0);
}

}
}
