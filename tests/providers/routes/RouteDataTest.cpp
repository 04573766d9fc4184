#include "Samples.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

using namespace cubes::test;

namespace {

class RouteDataTest : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("data.FDB");
};

template <typename Number>
std::vector<Number> valuesOf(VelmoraRouteStorageDataSetInterface const& set, char const* name, RouteFieldType type) {
    RouteField field{};
    EXPECT_EQ(set.findField(name, &field), rrDone) << name << ": " << lastError();
    EXPECT_STREQ(field.name, name);
    EXPECT_EQ(field.type, type);
    auto const* const values = static_cast<Number const*>(field.values);
    return std::vector<Number>(values, values + field.count);
}

std::string namesOf(VelmoraRouteStorageDataSetInterface& set) {
    Owner<AdditionalDataHeaderInterface> const header(set.getAdditionalDataHeader());
    return header ? header->getFieldNames() : "no header";
}

}

TEST_F(RouteDataTest, fieldsOfAllTypesAreReadAsTheyWereStored) {
    storeFields(file);
    auto const set = dataSet(file, romRead);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(set->countRoutes(), 3);
    EXPECT_EQ(set->countFields(), 6);
    EXPECT_EQ(valuesOf<std::uint8_t>(*set, "tolled", rftBoolean), (std::vector<std::uint8_t>{1, 0, 1}));
    EXPECT_EQ(valuesOf<std::uint8_t>(*set, "class", rftBytes), (std::vector<std::uint8_t>{0, 200, 255}));
    EXPECT_EQ(valuesOf<std::int16_t>(*set, "stops", rftSmallint), (std::vector<std::int16_t>{-32768, 0, 32767}));
    EXPECT_EQ(
        valuesOf<std::int32_t>(*set, "number", rftInteger), (std::vector<std::int32_t>{-2147483647, 0, 2147483647}));
    EXPECT_EQ(valuesOf<float>(*set, "time", rftFloat), (std::vector<float>{0.5f, 1.25f, -3}));
    EXPECT_EQ(valuesOf<double>(*set, "cost", rftDouble), (std::vector<double>{0.1, 1e300, -2}));
}

TEST_F(RouteDataTest, theValuesOfARouteAreInTheOrderOfTheFields) {
    storeFields(file);
    auto const set = dataSet(file, romRead);
    std::vector<double> values(6);
    ASSERT_EQ(set->getRouteValues(2, values.data()), rrDone);
    EXPECT_EQ(values, (std::vector<double>{1, 255, 32767, 2147483647, -3, -2}));
    for (std::int64_t const route : {-1, 3}) EXPECT_EQ(set->getRouteValues(route, values.data()), rrAbsent);
    EXPECT_EQ(values[1], 255);
}

TEST_F(RouteDataTest, fieldsAreInTheOrderOfAddingAndAbsentOnesAreNotErrors) {
    storeFields(file);
    auto const set = dataSet(file, romRead);
    RouteField field{};
    ASSERT_EQ(set->getField(1, &field), rrDone);
    EXPECT_STREQ(field.name, "class");
    EXPECT_EQ(set->getField(6, &field), rrAbsent);
    EXPECT_EQ(set->getField(-1, &field), rrAbsent);
    EXPECT_EQ(set->findField("Time", &field), rrAbsent);
    EXPECT_EQ(set->findField(nullptr, &field), rrAbsent);
    EXPECT_STREQ(field.name, "class");
    EXPECT_EQ(lastError(), "");
}

TEST_F(RouteDataTest, moreThanTenFieldsKeepTheirOrder) {
    {
        auto const set = dataSet(file, romCreate);
        for (int i = 0; i < 12; ++i)
            set->addField(field<std::int32_t>(("f" + std::to_string(i)).c_str(), rftInteger, {i}));
        ASSERT_EQ(set->commit(), rrDone);
    }
    EXPECT_EQ(namesOf(*dataSet(file, romRead)), "f0,f1,f2,f3,f4,f5,f6,f7,f8,f9,f10,f11");
}

TEST_F(RouteDataTest, theHeaderQuotesNamesThatNeedIt) {
    auto const set = dataSet(file, romCreate);
    EXPECT_EQ(namesOf(*set), "");
    for (char const* name : {"time", "travel time", "a,b", "say \"so\"", "veh/h", "K\xc3\xb6ln"})
        EXPECT_EQ(set->addField(field<float>(name, rftFloat, {1})), rrDone) << lastError();
    EXPECT_EQ(namesOf(*set), "time,\"travel time\",\"a,b\",\"say \"\"so\"\"\",veh/h,K\xc3\xb6ln");
    ASSERT_EQ(set->commit(), rrDone);
    EXPECT_EQ(namesOf(*dataSet(file, romRead)), namesOf(*set));
}

TEST_F(RouteDataTest, theHeaderOutlivesItsDataSet) {
    storeFields(file);
    Owner<AdditionalDataHeaderInterface> const header(dataSet(file, romRead)->getAdditionalDataHeader());
    ASSERT_TRUE(header);
    EXPECT_STREQ(header->getFieldNames(), "tolled,class,stops,number,time,cost");
    EXPECT_EQ(header->getFieldType("cost"), rftDouble);
    EXPECT_EQ(header->getFieldType("tolled"), rftBoolean);
    EXPECT_EQ(header->getFieldType("nothing"), rftUnknown);
    EXPECT_EQ(header->getFieldType(nullptr), rftUnknown);
}

TEST_F(RouteDataTest, aDataSetThatIsNotOpenHasNoHeader) {
    auto const set = dataSet(file);
    EXPECT_EQ(set->getAdditionalDataHeader(), nullptr);
    EXPECT_EQ(lastError(), "cannot read the fields of " + file + ": it is not open");
    EXPECT_EQ(set->countFields(), rrFailed);
    EXPECT_EQ(set->countRoutes(), rrFailed);
}

TEST_F(RouteDataTest, fieldsWithoutValuesAreFields) {
    {
        auto const set = dataSet(file, romCreate);
        EXPECT_EQ(set->addField({"time", rftFloat, nullptr, 0}), rrDone) << lastError();
        ASSERT_EQ(set->commit(), rrDone) << lastError();
    }
    auto const set = dataSet(file, romRead);
    EXPECT_EQ(namesOf(*set), "time");
    EXPECT_EQ(set->countRoutes(), 0);
    double value = 5;
    EXPECT_EQ(set->getRouteValues(0, &value), rrAbsent);
}

TEST_F(RouteDataTest, extendingAddsFieldsToTheExistingOnes) {
    storeFields(file);
    {
        auto const set = dataSet(file, romExtend);
        ASSERT_EQ(set->addField(field<float>("delay", rftFloat, {1, 2, 3})), rrDone) << lastError();
        ASSERT_EQ(set->commit(), rrDone);
    }
    EXPECT_EQ(namesOf(*dataSet(file, romRead)), "tolled,class,stops,number,time,cost,delay");
}

TEST_F(RouteDataTest, anInvalidFieldIsRefusedAndChangesNothing) {
    storeFields(file);
    float const values[] = {1, 2, 3};
    std::uint8_t const truths[] = {0, 1, 2};
    auto const number = [](int code) { return static_cast<RouteFieldType>(code); };
    struct {
        RouteField field;
        char const* reason;
    } const bad[] = {
        {{"", rftFloat, values, 3}, "the field has no name"},
        {{nullptr, rftFloat, values, 3}, "the field has no name"},
        {{"a\nb", rftFloat, values, 3}, "the field's name has a control character"},
        {{"time", rftFloat, values, 3}, "a field time exists already"},
        {{"new", rftFloat, values, 2}, "the field new has 2 values, the others have 3"},
        {{"new", rftFloat, values, -1}, "the number of values is negative"},
        {{"new", rftFloat, values, std::numeric_limits<std::int64_t>::max()}, "too large"},
        {{"new", rftFloat, nullptr, 3}, "the values are missing"},
        {{"new", rftUnknown, values, 3}, "unknown field type 6"},
        {{"new", number(-1), values, 3}, "unknown field type -1"},
        {{"new", rftBoolean, truths, 3}, "the boolean field new has values besides 0 and 1"},
    };
    auto const set = dataSet(file, romExtend);
    for (auto const& each : bad) {
        EXPECT_EQ(set->addField(each.field), rrFailed) << each.reason;
        EXPECT_EQ(lastError(), "cannot add a field to " + file + ": " + each.reason);
        EXPECT_EQ(set->countFields(), 6);
    }
}

TEST_F(RouteDataTest, nothingIsAddedWhileReading) {
    storeFields(file);
    auto const set = dataSet(file, romRead);
    EXPECT_EQ(set->addField(field<float>("delay", rftFloat, {1, 2, 3})), rrFailed);
    EXPECT_EQ(set->commit(), rrFailed);
    EXPECT_EQ(lastError(), "cannot write " + file + ": it is open for reading only");
}
