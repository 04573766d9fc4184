// The order of the virtual functions, on which applications compiled against earlier headers rely.

#include <cubes/cubes.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace {

// The index of a virtual function in the table of its class, which begins with the two entries of the destructor. The
// Itanium C++ ABI represents a pointer to a virtual function as its offset in the table plus 1.
template <typename Function>
std::ptrdiff_t slotOf(Function function) {
    std::ptrdiff_t parts[2];
    static_assert(sizeof function == sizeof parts);
    std::memcpy(parts, &function, sizeof parts);
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

template <typename... Functions>
void expectSlotsFrom(std::ptrdiff_t first, Functions... functions) {
    for (std::ptrdiff_t const slot : {slotOf(functions)...}) EXPECT_EQ(slot, first++);
}

constexpr std::ptrdiff_t behindDestructor = 2;
constexpr std::ptrdiff_t behindConnection = 12;

using Table = CountedPtr<Rktable::TRkTableProxy>;
using Keys = TRkAutoListT<TRkVarCubes::TKey>;

}

TEST(SlotOrder, ofEveryCatalogueBeginsWithItsRoot) {
    expectSlotsFrom(behindDestructor, &TRkBase::Ok, &TRkBase::ClassID, &TRkBase::AddReference,
        &TRkBase::ReleaseReference, &TRkBase::ClassName, &TRkBase::ReferenceCount, &TRkBase::Accept,
        &TRkBase::IsReferenced, &TRkBaseCubes::SetConnection, &TRkBaseCubes::GetConnection);
    EXPECT_EQ(slotOf(&TRkMatCubes::cubeAliasName), behindConnection);
}

// clang-format off
#define PARTS short, short, short, short, short, short
#define REFERENCES short&, short&, short&, short&, short&, short&
// clang-format on

TEST(SlotOrder, ofResultCubesContinuesAfterTheConnection) {
    using Cube = TRkVarCubes;
    expectSlotsFrom(behindConnection, &Cube::cubeAliasName,
        static_cast<TRkString (Cube::*)(PARTS, bool) const>(&Cube::FileName),
        static_cast<bool (Cube::*)(PARTS, short, PARTS, bool)>(&Cube::Add),
        static_cast<bool (Cube::*)(PARTS, bool) const>(&Cube::Check),
        static_cast<bool (Cube::*)(PARTS, bool)>(&Cube::Clear),
        static_cast<bool (Cube::*)(PARTS, PARTS, bool, bool)>(&Cube::Copy),
        static_cast<bool (Cube::*)(PARTS, bool)>(&Cube::Delete),
        static_cast<bool (Cube::*)(Cube const&, PARTS, PARTS, bool, bool)>(&Cube::Move),
        static_cast<bool (Cube::*)(PARTS, TRkMatrix const&, RkLockState, bool)>(&Cube::Set),
        static_cast<bool (Cube::*)()>(&Cube::Remove),
        static_cast<bool (Cube::*)(Cube const&, PARTS, PARTS, bool, bool)>(&Cube::Copy),
        static_cast<bool (Cube::*)(PARTS, PARTS, bool, bool)>(&Cube::Move), static_cast<bool (Cube::*)()>(&Cube::Clear),
        static_cast<bool (Cube::*)(PARTS, bool)>(&Cube::Remove), static_cast<bool (Cube::*)()>(&Cube::Delete),
        static_cast<TRkMatrix* (Cube::*)(PARTS, RkLockState, bool) const>(&Cube::Get),
        static_cast<bool (Cube::*)(TRkAutoListT<TRkBaseCubes::TKey>&) const>(&Cube::Get),
        static_cast<double (Cube::*)(PARTS, int, int, RkLockState, bool) const>(&Cube::Get),
        static_cast<bool (Cube::*)(Keys&) const>(&Cube::Get), &Cube::GetHeader,
        static_cast<TRkFString (Cube::*)() const>(&Cube::MatrixDirectory),
        static_cast<void (Cube::*)(TRkFString const&)>(&Cube::MatrixDirectory), &Cube::SetData, &Cube::GetData,
        &Cube::GetParentPMTURI, &Cube::SetParentPMTURI, &Cube::GetParentCubenr, &Cube::SetParentCubenr,
        &Cube::GetPmturis, &Cube::GetChilds,
        static_cast<bool (Cube::*)(Table, short, PARTS, short, PARTS, bool)>(&Cube::Add),
        static_cast<bool (Cube::*)(Table, short, PARTS, bool) const>(&Cube::LookUp),
        static_cast<Table (Cube::*)() const>(&Cube::Open), &Cube::SaveMatrix,
        static_cast<TRkString (Cube::*)(Table, short, PARTS, bool) const>(&Cube::FileName), &Cube::FindMatrixDirectory,
        &Cube::FindMatrixSchema, &Cube::createFilename);
}

TEST(SlotOrder, ofRouteCubesIsThatOfEveryResultCube) {
    EXPECT_EQ(slotOf(&RouteStorageCube::GetData), slotOf(&TRkVarCubes::GetData));
    EXPECT_EQ(slotOf(&RouteStorageDataCube::GetData), slotOf(&TRkVarCubes::GetData));
    EXPECT_EQ(slotOf(&RouteStorageCube::createFilename), slotOf(&TRkVarCubes::createFilename));
}

TEST(SlotOrder, ofMatricesBeginsWithTheirValidity) {
    expectSlotsFrom(behindDestructor, &TRkMatrix::IsValid, &TRkMatrix::StateCode, &TRkMatrix::FileName,
        &TRkMatrix::AssignFrom, &TRkMatrix::Columns, &TRkMatrix::Rows,
        static_cast<float* (TRkMatrix::*)(int, int)>(&TRkMatrix::RowAt), &TRkMatrix::Release, &TRkMatrix::Prepare);
}

TEST(SlotOrder, ofEntryDataHasNoDestructor) {
    using Data = CubeDataInterface;
    expectSlotsFrom(0, &Data::addRef, &Data::release, &Data::setPurpose, &Data::getPurpose, &Data::setMode,
        &Data::getMode, &Data::setTime, &Data::getTime, &Data::setUser, &Data::getUser, &Data::setResult,
        &Data::getResult, &Data::setIteration, &Data::getIteration);
}

TEST(SlotOrder, ofTheProvidersObjectsHasNoDestructor) {
    using namespace VL::Interface;
    using Storage = RouteStorageInterface;
    using Header = AdditionalDataHeaderInterface;
    expectSlotsFrom(0, &SettingsInterface::addRef, &SettingsInterface::release);
    expectSlotsFrom(0, &Storage::addRef, &Storage::release, &Storage::open, &Storage::getFileName,
        &Storage::setCubeType, &Storage::setKey);
    expectSlotsFrom(0, &Header::addRef, &Header::release, &Header::getFieldType, &Header::getFieldNames);
}

TEST(SlotOrder, ofFieldMetadataHasNoDestructor) {
    using Interface = Metadata::MetadataInterface;
    expectSlotsFrom(0, &Interface::addRef, &Interface::release, &Interface::version, &Interface::dup,
        &Interface::getClassName, &Interface::hasA, &Interface::isA);
}
