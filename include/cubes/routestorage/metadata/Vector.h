#pragma once

#include <cubes/routestorage/Reference.h>
#include <cubes/routestorage/metadata/Counted.h>
#include <cubes/routestorage/metadata/MetadataInterface.h>

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

namespace Metadata {

/// Descriptions in order. `Pointer`: a pointer to their class.
template <typename Pointer>
class Vector final : public Counted<MetadataInterface> {
public:
    /// With copies of all items.
    Vector* dup() const override {
        cubes::Reference<Vector> copy(new Vector);
        for (auto const& item : items_) copy->items_.emplace_back(item->dup());
        return copy.release();
    }
    char const* getClassName() const override { return "Vector"; }

    /// Takes a reference of the item, which it gives up at its end.
    void append(Pointer item) {
        item->addRef();
        items_.emplace_back(item);
    }
    std::size_t size() const noexcept { return items_.size(); }
    /// The item, without a reference. REQUIRES: index < size().
    Pointer operator[](std::size_t index) const noexcept { return items_[index].get(); }

private:
    std::vector<cubes::Reference<std::remove_pointer_t<Pointer>>> items_;
};

}
