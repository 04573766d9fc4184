#include "catalogue/CubeNames.h"

#include "catalogue/MissingTable.h"

namespace cubes {

CubeNames::CubeNames(CountedPtr<Rktable::TRkTableProxy> catalogue) : catalogue_(std::move(catalogue)) {}

TRkString const* CubeNames::find(short cubenr) {
    auto entry = known_.find(cubenr);
    if (entry == known_.end()) entry = known_.emplace(cubenr, read(cubenr)).first;
    return entry->second.isThere ? &entry->second.name : nullptr;
}

TRkString CubeNames::of(short cubenr) {
    TRkString const* const name = find(cubenr);
    return name ? *name : TRkString();
}

CubeNames::Known CubeNames::read(short cubenr) const {
    if (!catalogue_ || !falseWithoutTable([&] { return catalogue_->Locate("cubenr", cubenr); })) return {};
    return {true, catalogue_->FieldByName("name")->AsString()};
}

}
