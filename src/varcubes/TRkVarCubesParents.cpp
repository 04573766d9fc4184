// Result cubes keep parents through Add alone and attach no data: cubes of routes give these
// operations their meaning.

#include <cubes/varcubes/TRkVarCubes.h>

bool TRkVarCubes::SetData(CubeDataInterface*, short, short, short, short, short, short, short, short, short, short,
    short, short, short, bool) {
    return false;
}

CubeDataInterface* TRkVarCubes::GetData(short, short, short, short, short, short, bool) const {
    return nullptr;
}

void TRkVarCubes::GetParentPMTURI(
    short, short, short, short, short, short, short& pp, short& pm, short& pt, short& pu, short& pr, short& pi) const {
    pp = pm = pt = pu = pr = pi = -1;
}

bool TRkVarCubes::SetParentPMTURI(short, short, short, short, short, short, short, short, short, short, short, short) {
    return false;
}

short TRkVarCubes::GetParentCubenr(short, short, short, short, short, short) const {
    return 0;
}

bool TRkVarCubes::SetParentCubenr(short, short, short, short, short, short, long) {
    return false;
}

bool TRkVarCubes::GetChilds(short, short, short, short, short, short, TRkAutoListT<TKey>& list) const {
    list.Clear();
    return false;
}
