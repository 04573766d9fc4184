#include <cubes/matcubes/TRkMatCubes.h>

namespace {

constexpr char const* counterColumn = "usageCounter";

bool keepsCounter(CountedPtr<Rktable::TRkTableProxy> const& table) {
    return table && table->FindField(counterColumn);
}

bool isFree(Rktable::TRkTableProxy& table) {
    auto const* const counter = table.FindField(counterColumn);
    return !counter || counter->IsNull() || counter->AsInteger() == 0;
}

}

bool TRkMatCubes::incUsage(short cubenr, short p, short m, short t, short u) {
    auto table = Open();
    bool const raised = keepsCounter(table) && LookUp(table, cubenr, p, m, t, u, false) && table->Raise(counterColumn);
    Close(table);
    return raised;
}

bool TRkMatCubes::decUsage(short cubenr, short p, short m, short t, short u) {
    auto table = Open();
    bool const lowered = keepsCounter(table) && LookUp(table, cubenr, p, m, t, u, false) && table->Lower(counterColumn);
    Close(table);
    return lowered;
}

bool TRkMatCubes::isCorrect(short cubenr, short p, short m, short t, short u) const {
    auto table = Open();
    bool const correct = LookUp(table, cubenr, p, m, t, u, false) && isFree(*table);
    Close(table);
    return correct;
}
