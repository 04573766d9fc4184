// Writing through Set against a bare write, flush and rename of the same bytes; reading through Get and summing all
// rows against mapping the raw file and summing; verifying a matrix against reading it alone.

#include "Benches.h"
#include "WorkDirectory.h"

#include <cubes/cubes.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace bench {

using cubes::Durability;
using cubes::Storage;

namespace {

void require(bool done, char const* what) {
    if (!done) throw std::runtime_error(std::string("failed: ") + what);
}

class Descriptor {
public:
    Descriptor(std::string const& path, int flags) : number_(::open(path.c_str(), flags, 0644)) {
        require(number_ >= 0, "open");
    }
    ~Descriptor() { ::close(number_); }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int number() const { return number_; }

private:
    int number_;
};

void writeAll(int file, char const* bytes, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        ssize_t const written = ::write(file, bytes + done, size - done);
        require(written > 0, "write");
        done += static_cast<std::size_t>(written);
    }
}

void bareWrite(std::string const& path, std::vector<float> const& cells, Durability durability = Durability::full) {
    std::string const beside = path + ".tmp";
    {
        Descriptor const file(beside, O_CREAT | O_TRUNC | O_WRONLY);
        writeAll(file.number(), reinterpret_cast<char const*>(cells.data()), cells.size() * sizeof(float));
        require(durability != Durability::full || ::fsync(file.number()) == 0, "fsync");
    }
    require(std::rename(beside.c_str(), path.c_str()) == 0, "rename");
}

double sum(float const* row, std::size_t count) {
    // Four parallel sums, so that the loop is limited by memory and not by the latency of additions.
    double sums[4] = {};
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4)
        for (std::size_t k = 0; k < 4; ++k) sums[k] += static_cast<double>(row[i + k]);
    for (; i < count; ++i) sums[0] += static_cast<double>(row[i]);
    return sums[0] + sums[1] + sums[2] + sums[3];
}

double bareSum(std::string const& path, std::size_t zones) {
    Descriptor const file(path, O_RDONLY);
    std::size_t const size = zones * zones * sizeof(float);
    void* const map = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.number(), 0);
    require(map != MAP_FAILED, "mmap");
    double total = 0;
    for (std::size_t row = 0; row < zones; ++row) total += sum(static_cast<float const*>(map) + row * zones, zones);
    ::munmap(map, size);
    return total;
}

double ourSum(TRkMatCubes const& cubes) {
    std::unique_ptr<TRkMatrix> const matrix(cubes.Get(1, 1, 1, 1, 1, lsRead, false));
    require(matrix != nullptr, "Get");
    double total = 0;
    for (int row = 0; row < matrix->Rows(); ++row)
        total += sum(matrix->RowAt(row, 8), static_cast<std::size_t>(matrix->Columns()));
    return total;
}

double storedSum(cubes::EntryStore const& store, bool isVerified) {
    auto const matrix = store.get({1, 1, 1, 1, 1}, {.verify = isVerified});
    auto const elements = matrix.Elements();
    return sum(elements.data(), elements.size());
}

std::vector<float> cellsOf(std::size_t zones) {
    std::vector<float> cells(zones * zones);
    for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = static_cast<float>(i % 1000) * 0.25f;
    return cells;
}

TRkMatrix matrixOf(std::vector<float> const& cells, std::size_t zones) {
    int const size = static_cast<int>(zones);
    TRkMatrix matrix = TRkMatrix::inMemory(size, size);
    for (int row = 0; row < size; ++row)
        std::copy_n(cells.data() + static_cast<std::size_t>(row) * zones, zones, matrix.RowAt(row, 8));
    return matrix;
}

// Replacing an entry's matrix through the store.
void comparePut(std::vector<Result>& results, std::size_t zones, Durability durability, double limit, int rounds) {
    WorkDirectory const work;
    auto const project = cubes::Project::create(work.path("project"));
    cubes::setMatrixStorage(project.settings()->MatrixDirectory().str(), {Storage::plain, durability});
    auto& store = project.store();
    store.addCube("Bench");
    auto const cells = cellsOf(zones);
    auto const matrix = matrixOf(cells, zones);
    char const* const flushed = durability == Durability::full ? "flushed" : "not flushed";
    results.push_back(compare({fmt::format("write {0} x {0} through put, {1}", zones, flushed), limit, rounds, 1,
        [&] { bareWrite(work.path("raw"), cells, durability); },
        [&] {
            store.put({1, 1, 1, 1, 1}, matrix);
        }}));
}

// What verification adds to reading an entry and summing it.
void compareVerified(std::vector<Result>& results, std::size_t zones, Storage storage, int rounds) {
    WorkDirectory const work;
    auto const project = cubes::Project::create(work.path("project"));
    cubes::setMatrixStorage(project.settings()->MatrixDirectory().str(), {storage, Durability::process});
    auto& store = project.store();
    store.addCube("Bench");
    store.put({1, 1, 1, 1, 1}, matrixOf(cellsOf(zones), zones));
    double const expected = storedSum(store, false);
    char const* const name = storage == Storage::plain ? "plain" : "deflate";
    results.push_back(compare({fmt::format("verify and sum {0} x {0}, {1}", zones, name), 3, rounds, 1,
        [&] { require(storedSum(store, false) == expected, "sum"); },
        [&] { require(storedSum(store, true) == expected, "verified sum"); }}));
}

// Reads a file by blocks, on one core.
void bareRead(std::string const& path, std::vector<char>& block) {
    Descriptor const file(path, O_RDONLY);
    ssize_t size = 0;
    do {
        size = ::read(file.number(), block.data(), block.size());
        require(size >= 0, "read");
    } while (size > 0);
}

// Checking all matrices of a project with their content, on all cores.
void compareCheck(std::vector<Result>& results, std::size_t zones, short count, int rounds) {
    WorkDirectory const work;
    auto const project = cubes::Project::create(work.path("project"));
    cubes::setMatrixStorage(project.settings()->MatrixDirectory().str(), {Storage::plain, Durability::process});
    auto& store = project.store();
    store.addCube("Bench");
    auto const matrix = matrixOf(cellsOf(zones), zones);
    for (short user = 1; user <= count; ++user) store.put({1, 1, 1, 1, user}, matrix);
    std::vector<std::string> files;
    for (auto const& entry : store.entries()) files.push_back(entry.file);
    std::vector<char> block(1 << 20);
    results.push_back(compare({fmt::format("check {0} matrices of {1} x {1} with their content", count, zones), 2,
        rounds, 1, [&] { std::ranges::for_each(files, [&](std::string const& file) { bareRead(file, block); }); },
        [&] { require(store.check({}, {.deep = true}).empty(), "check"); }}));
}

void compareAt(std::vector<Result>& results, std::size_t zones, int rounds) {
    WorkDirectory const work;
    auto const project = cubes::Project::create(work.path("project"));
    TRkMatCubes cubes(project.settings(), ".odm", true);
    cubes.Add("Bench", 1, 1, 1, 1, false);

    auto const cells = cellsOf(zones);
    auto matrix = matrixOf(cells, zones);

    std::string const raw = work.path("raw");
    results.push_back(
        compare({fmt::format("write {0} x {0} through Set", zones), 1.25, rounds, 1, [&] { bareWrite(raw, cells); },
            [&] { require(cubes.Set(1, 1, 1, 1, 1, matrix, lsReadWrite, false), "Set"); }}));
    double const expected = bareSum(raw, zones);
    results.push_back(compare({fmt::format("read and sum {0} x {0} through Get", zones), 1.2, rounds, 1,
        [&] { require(bareSum(raw, zones) == expected, "bare sum"); },
        [&] { require(ourSum(cubes) == expected, "sum"); }, 150}));
}

}

std::vector<Result> matrices() {
    std::vector<Result> results;
    for (auto const durability : {Durability::full, Durability::process}) {
        comparePut(results, 512, durability, 1.3, 41);
        comparePut(results, 2048, durability, durability == Durability::full ? 1.1 : 1.2, 21);
    }
    compareAt(results, 2000, 21);
    compareAt(results, 5000, 15);
    for (auto const storage : {Storage::plain, Storage::deflate}) {
        compareVerified(results, 2000, storage, 21);
        compareVerified(results, 5000, storage, 15);
    }
    compareCheck(results, 3000, 50, 5);
    return results;
}

}
