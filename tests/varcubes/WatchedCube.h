#pragma once

#include <cubes/database/TRkConnectionManager.h>
#include <cubes/varcubes/TRkVarCubes.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/CubeTesting.h"

namespace cubes::test {

/// A cube whose overrides note the current connection at each call.
template <typename Cube>
class WatchedCube : public Cube {
public:
    using Cube::Cube;
    using Connections = std::set<Pgaccess::TPgConnection*>;
    using Table = CountedPtr<Rktable::TRkTableProxy>;

    Table Open() const override {
        note();
        return Cube::Open();
    }
    TRkFString MatrixDirectory() const override {
        note();
        return Cube::MatrixDirectory();
    }
    void MatrixDirectory(TRkFString const& directory) override { Cube::MatrixDirectory(directory); }
    bool LookUp(Table table, short cubenr, short p, short m, short t, short u, short r, short i,
        bool zeroBased) const override {
        note();
        return Cube::LookUp(table, cubenr, p, m, t, u, r, i, zeroBased);
    }
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override {
        note();
        return Cube::createFilename(p, m, t, u, r, i);
    }
    using Cube::Check;
    bool Check(short p, short m, short t, short u, short r, short i, bool zeroBased) const override {
        note();
        return Cube::Check(p, m, t, u, r, i, zeroBased);
    }
    using Cube::Clear;
    bool Clear(short p, short m, short t, short u, short r, short i, bool zeroBased) override {
        note();
        return Cube::Clear(p, m, t, u, r, i, zeroBased);
    }
    using Cube::Add;
    bool Add(short p, short m, short t, short u, short r, short i, short parentcubenr, short pp, short pm, short pt,
        short pu, short pr, short pi, bool zeroBased) override {
        note();
        return Cube::Add(p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    }

    /// The connections that were current since the last call.
    Connections taken() const { return std::exchange(seen_, {}); }

private:
    void note() const { seen_.insert(getConnectionManagerInstance().CurrentConnection()); }

    mutable Connections seen_;
};

/// An operation that calls others through their virtual slots. The table is an opened entry table.
template <typename Cube>
struct WatchedOperation {
    char const* name;
    std::function<void(Cube&, CountedPtr<Rktable::TRkTableProxy> const& table)> run;
};

/// Runs each operation on an entry 1/2/3/4/5/6 that exists while another project is current, and expects that every
/// override sees the connection of the cube's own project.
template <typename Cube>
void expectOwnConnection(
    WatchedCube<Cube>& cube, Pgaccess::TPgConnection* own, std::vector<WatchedOperation<Cube>> const& operations) {
    for (auto const& [name, run] : operations) {
        SCOPED_TRACE(name);
        cube.Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
        auto const table = cube.Open();
        cube.taken();
        run(cube, table);
        EXPECT_EQ(cube.taken(), typename WatchedCube<Cube>::Connections{own});
        EXPECT_NE(getConnectionManagerInstance().CurrentConnection(), own);
    }
}

/// The operations of all cubes with six keys.
template <typename Cube>
std::vector<WatchedOperation<Cube>> resultOperations() {
    using Table = CountedPtr<Rktable::TRkTableProxy>;
    return {
        {"Add", [](Cube& c, Table const&) { c.TRkVarCubes::Add(1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false); }},
        {"Add to a table",
            [](Cube& c, Table const& t) {
                c.Add(t, c.CubeNumber(), 1, 1, 1, 1, 1, 2, 0, -1, -1, -1, -1, -1, -1, false);
            }},
        {"FileName", [](Cube& c, Table const&) { c.FileName(1, 2, 3, 4, 5, 6, false); }},
        {"FileName from a table",
            [](Cube& c, Table const& t) { c.FileName(t, c.CubeNumber(), 1, 2, 3, 4, 5, 6, false); }},
        {"Check", [](Cube& c, Table const&) { c.TRkVarCubes::Check(1, 2, 3, 4, 5, 6, false); }},
        {"isCorrect", [](Cube& c, Table const&) { c.isCorrect(1, 2, 3, 4, 5, 6); }},
        {"incUsage", [](Cube& c, Table const&) { c.incUsage(1, 2, 3, 4, 5, 6); }},
        {"decUsage", [](Cube& c, Table const&) { c.decUsage(1, 2, 3, 4, 5, 6); }},
        {"Clear", [](Cube& c, Table const&) { c.TRkVarCubes::Clear(1, 2, 3, 4, 5, 6, false); }},
        {"Delete", [](Cube& c, Table const&) { c.Delete(1, 2, 3, 4, 5, 6, false); }},
        {"Remove", [](Cube& c, Table const&) { c.Remove(1, 2, 3, 4, 5, 6, false); }},
        {"Clear all", [](Cube& c, Table const&) { c.Clear(); }},
        {"Delete all", [](Cube& c, Table const&) { c.Delete(); }},
        {"Remove all", [](Cube& c, Table const&) { c.Remove(); }},
        {"Copy", [](Cube& c, Table const&) { c.Copy(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 3, false, false); }},
        {"Copy from another",
            [](Cube& c, Table const&) { c.Copy(c, 1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 4, false, false); }},
        {"Move", [](Cube& c, Table const&) { c.Move(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 5, false, false); }},
        {"Move from another",
            [](Cube& c, Table const&) { c.Move(c, 1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 6, false, false); }},
        {"list",
            [](Cube& c, Table const&) {
                TRkAutoListT<TRkVarCubes::TKey> list;
                c.TRkVarCubes::Get(list);
            }},
        {"GetAllCubes",
            [](Cube& c, Table const&) {
                TRkAutoListT<TRkVarCubes::TKey> list;
                c.GetAllCubes(list);
            }},
        {"GetPmturis",
            [](Cube& c, Table const&) {
                TRkAutoListT<TRkVarCubes::TKey> list;
                c.GetPmturis(0, 1, 1, 1, 1, 1, 1, list);
            }},
        {"Set",
            [](Cube& c, Table const&) { c.TRkVarCubes::Set(1, 2, 3, 4, 5, 6, smallMatrix(1), lsReadWrite, false); }},
        {"SaveMatrix",
            [](Cube& c, Table const&) {
                c.TRkVarCubes::SaveMatrix(smallMatrix(1), 1, 2, 3, 4, 5, 6, lsReadWrite, false);
            }},
        {"Get", [](Cube& c,
                    Table const&) { std::unique_ptr<TRkMatrix>(c.TRkVarCubes::Get(1, 2, 3, 4, 5, 6, lsRead, false)); }},
        {"GetHeader", [](Cube& c, Table const&) { c.TRkVarCubes::GetHeader(1, 2, 3, 4, 5, 6, false); }},
    };
}

}
