#include <cubes/routestorage/Metadata.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>

using namespace Metadata;

namespace cubes::test {
namespace {

using Long = BasicType<long, MetadataLongInterface>;
using UnsignedLong = BasicType<unsigned long, MetadataUnsignedLongInterface>;
using Fields = Vector<Field*>;

Reference<Field> someField() {
    Reference<Field> field(new Field);
    field->setName("speed");
    field->setType("float");
    field->setPrecision(-3);
    field->setSize(ULONG_MAX);
    return field;
}

std::string show(Field const& field) {
    Reference<MetadataStringInterface> const name(field.getName());
    Reference<MetadataStringInterface> const type(field.getType());
    Reference<MetadataLongInterface> const precision(field.getPrecision());
    Reference<MetadataUnsignedLongInterface> const size(field.getSize());
    return std::string(name->get()) + " " + type->get() + " " + std::to_string(precision->get()) + " " +
           std::to_string(size->get());
}

// Every class of descriptions with its names.
void expectNames(MetadataInterface& object, char const* className, char const* interfaceName) {
    EXPECT_STREQ(object.getClassName(), className);
    EXPECT_EQ(object.version(), 1);
    for (char const* const name : {className, interfaceName}) {
        EXPECT_TRUE(object.isA(name)) << name;
        EXPECT_TRUE(object.hasA(name)) << name;
    }
    for (char const* const name : {"", "field", "CubeDataInterface", static_cast<char const*>(nullptr)}) {
        EXPECT_FALSE(object.isA(name));
        EXPECT_FALSE(object.hasA(name));
    }
}

TEST(Metadata, reportsItsClassAndInterface) {
    expectNames(*Reference<Field>(new Field), "Field", "MetadataFieldInterface");
    expectNames(*Reference<String>(new String), "String", "MetadataStringInterface");
    expectNames(*Reference<Long>(new Long), "BasicType", "MetadataLongInterface");
    expectNames(*Reference<UnsignedLong>(new UnsignedLong), "BasicType", "MetadataUnsignedLongInterface");
    expectNames(*Reference<Fields>(new Fields), "Vector", "MetadataInterface");
    EXPECT_FALSE(Reference<Field>(new Field)->isA("MetadataStringInterface"));
}

TEST(Metadata, countsItsReferences) {
    for (MetadataInterface* const object : {static_cast<MetadataInterface*>(new Field),
             static_cast<MetadataInterface*>(new String("a")), static_cast<MetadataInterface*>(new Long(1)),
             static_cast<MetadataInterface*>(new UnsignedLong(1)), static_cast<MetadataInterface*>(new Fields)}) {
        object->addRef();
        EXPECT_EQ(object->release(), 1);
        EXPECT_EQ(object->dup()->release(), 0);
        EXPECT_EQ(object->release(), 0);
    }
}

TEST(Metadata, keepsTextsAndNumbers) {
    Reference<String> const text(new String);
    EXPECT_STREQ(text->get(), "");
    text->set("two words");
    EXPECT_STREQ(text->get(), "two words");
    text->set(text->get());
    EXPECT_STREQ(text->get(), "two words");
    text->set(nullptr);
    EXPECT_STREQ(text->get(), "");
    EXPECT_STREQ(Reference<String>(new String(nullptr))->get(), "");
    Reference<Long> const number(new Long);
    EXPECT_EQ(number->get(), 0);
    for (long const value : {LONG_MIN, -1L, LONG_MAX}) {
        number->set(value);
        EXPECT_EQ(number->get(), value);
    }
}

TEST(MetadataField, beginsEmpty) {
    EXPECT_EQ(show(*Reference<Field>(new Field)), "  0 0");
}

TEST(MetadataField, keepsWhatIsSet) {
    EXPECT_EQ(show(*someField()), "speed float -3 " + std::to_string(ULONG_MAX));
}

TEST(MetadataField, returnsItsOwnParts) {
    auto const field = someField();
    Reference<MetadataStringInterface> const name(field->getName());
    name->set("length");
    field->setPrecision(2);
    EXPECT_EQ(show(*field), "length float 2 " + std::to_string(ULONG_MAX));
    name->addRef();
    EXPECT_EQ(name->release(), 2);
}

TEST(MetadataField, mayBeDeletedBeforeThePartsThatItReturned) {
    auto field = someField();
    Reference<MetadataStringInterface> const name(field->getName());
    Reference<MetadataUnsignedLongInterface> const size(field->getSize());
    field.reset();
    EXPECT_STREQ(name->get(), "speed");
    EXPECT_EQ(size->get(), ULONG_MAX);
}

TEST(MetadataField, isDuplicatedWithPartsOfItsOwn) {
    auto const field = someField();
    Reference<Field> const copy(field->dup());
    field->setName("length");
    EXPECT_EQ(show(*copy), "speed float -3 " + std::to_string(ULONG_MAX));
    Reference<MetadataInterface> const more(static_cast<MetadataInterface&>(*field).dup());
    EXPECT_STREQ(more->getClassName(), "Field");
}

TEST(MetadataVector, holdsOneReferenceOfEachItem) {
    auto const field = someField();
    {
        Reference<Fields> const fields(new Fields);
        EXPECT_EQ(fields->size(), 0u);
        fields->append(field.get());
        fields->append(field.get());
        EXPECT_EQ(fields->size(), 2u);
        EXPECT_EQ((*fields)[0], field.get());
        EXPECT_EQ((*fields)[1], field.get());
        field->addRef();
        EXPECT_EQ(field->release(), 3);
    }
    field->addRef();
    EXPECT_EQ(field->release(), 1);
}

TEST(MetadataVector, isDuplicatedWithItsItems) {
    Reference<Fields> fields(new Fields);
    fields->append(someField().get());
    Reference<Fields> const copy(fields->dup());
    (*fields)[0]->setName("length");
    fields.reset();
    ASSERT_EQ(copy->size(), 1u);
    EXPECT_EQ(show(*(*copy)[0]), "speed float -3 " + std::to_string(ULONG_MAX));
}

}
}
