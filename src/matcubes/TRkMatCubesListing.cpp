#include <cubes/matcubes/TRkMatCubes.h>

#include "catalogue/CubeNames.h"

namespace {

constexpr int keyParts = 5;

short readShort(Rktable::TRkField const* field) {
    return static_cast<short>(field->AsInteger());
}

}

TRkMatCubes::TKey::TKey(short cube, short p, short m, short t, short u, bool zero)
    : zeroBased(zero), cubenr(cube), mode(m), purpose(p), time(t), user(u) {}

int TRkMatCubes::TKey::operator()(int index) const {
    short const numbers[keyParts] = {cubenr, purpose, mode, time, user};
    if (index == -1) return keyParts;
    return index >= 0 && index < keyParts ? numbers[index] : -1;
}

int TRkMatCubes::TKey::operator[](int index) const {
    return (*this)(index);
}

TRkString TRkMatCubes::TKey::AsString() const {
    TRkString text;
    for (int i = 0; i < keyParts; ++i) text += TRkString((*this)(i)) + ",";
    return text + name;
}

bool TRkMatCubes::Get(CountedPtr<Rktable::TRkTableProxy> table, TRkAutoListT<TKey>& list) const {
    list.Clear();
    if (!table) return false;
    auto const* const cubenr = table->FieldByName("cubenr");
    auto const* const purpose = table->FieldByName("purpose");
    auto const* const mode = table->FieldByName("mode");
    auto const* const time = table->FieldByName("time");
    auto const* const user = table->FieldByName("user");
    for (; !table->GetEof(); table->Next())
        list.Add(
            new TKey(readShort(cubenr), readShort(purpose), readShort(mode), readShort(time), readShort(user), false));
    return true;
}

bool TRkMatCubes::GetNames(CountedPtr<Rktable::TRkTableProxy> catalogue, TRkAutoListT<TKey> list) const {
    if (!catalogue) return false;
    cubes::CubeNames names(catalogue);
    for (int i = 0; i < list.Count(); ++i) list[i]->name = names.of(list[i]->cubenr);
    return true;
}

bool TRkMatCubes::Get(TRkAutoListT<TKey>& list) const {
    auto entries = Open();
    bool const read = Get(entries, list);
    Close(entries);
    if (!read) return false;
    auto catalogue = TRkBaseCubes::Open();
    GetNames(catalogue, list);
    Close(catalogue);
    return true;
}
