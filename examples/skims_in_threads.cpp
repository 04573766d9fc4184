// Stores 100 skims in four threads through one store, and reads them back.
#include <cubes/cubes.h>

#include <exception>
#include <future>
#include <iostream>
#include <vector>

namespace {

constexpr short skim = -1;
constexpr short skims = 100;
constexpr short threads = 4;
constexpr int zones = 50;

// A result: kind, then purpose, mode, time period, user class, result and iteration.
cubes::EntryKey keyOf(short result) {
    return {skim, 1, 1, 1, 1, result, 0};
}

// A matrix object belongs to one thread at a time, the store to all of them.
void storeSkims(cubes::EntryStore& store, short thread) {
    for (short result = thread; result < skims; result = static_cast<short>(result + threads)) {
        TRkMatrix minutes = TRkMatrix::inMemory(zones, zones);
        for (float& cell : minutes.WritableElements()) cell = result;
        store.put(keyOf(result), minutes);
    }
}

}

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        cubes::Project const project = cubes::Project::create(arguments[1], {.storage = "deflate"});
        cubes::EntryStore& store = project.store();

        std::vector<std::future<void>> work;
        for (short thread = 0; thread < threads; ++thread)
            work.push_back(std::async(std::launch::async, [&store, thread] { storeSkims(store, thread); }));
        for (auto& done : work) done.get(); // throws what was thrown in the thread

        int stored = 0;
        for (cubes::EntryInfo const& entry : store.entries({.cube = "skim"}))
            if (store.get(entry.key).At(1, zones) == static_cast<float>(entry.key.result())) ++stored;
        std::cout << stored << " skims stored\n" << store.text(keyOf(99)) << " is the last one\n";
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
