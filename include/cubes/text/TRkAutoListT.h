#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

/// A list that owns its items. A copy is another handle of the same list: changes through one
/// handle show in all. Items are destroyed by Delete, by Clear or with the last handle.
template <typename Item>
class TRkAutoListT {
public:
    /// Takes ownership of `item`.
    void Add(Item* item) { body_->push_back(std::unique_ptr<Item>(item)); }
    int Count() const noexcept { return static_cast<int>(body_->size()); }
    /// The item at `index`, still owned by the list. REQUIRES: 0 <= index < Count().
    Item* operator[](int index) const noexcept { return (*body_)[static_cast<std::size_t>(index)].get(); }
    void Clear() noexcept { body_->clear(); }
    /// Destroys the item at `index`; the following items move up. REQUIRES: 0 <= index < Count().
    void Delete(int index) { body_->erase(body_->begin() + index); }
    /// Sorts the items by `compare` (negative: first before second). Equal items keep their order.
    void Sort(int (*compare)(Item*, Item*)) {
        std::stable_sort(body_->begin(), body_->end(),
            [compare](auto const& a, auto const& b) { return compare(a.get(), b.get()) < 0; });
    }
    /// Returns a separate list with copies of the items.
    TRkAutoListT Clone() const {
        TRkAutoListT copy;
        copy.body_->reserve(body_->size());
        for (auto const& item : *body_) copy.Add(new Item(*item));
        return copy;
    }

private:
    // Shared because lists are passed by value and filled by the callee.
    std::shared_ptr<std::vector<std::unique_ptr<Item>>> body_ = std::make_shared<std::vector<std::unique_ptr<Item>>>();
};
