// Shows what the store does when an operation fails: it throws a StoreError with a reason and changes nothing.
#include <cubes/cubes.h>

#include <exception>
#include <functional>
#include <iostream>

// Runs `work` and prints why it failed.
static void attempt(std::function<void()> const& work) {
    try {
        work();
        std::cout << "done\n";
    } catch (cubes::StoreError const& error) {
        std::cout << nameOf(error.reason()) << ": " << error.what() << '\n';
    }
}

static TRkMatrix matrixOf(float value) {
    TRkMatrix matrix = TRkMatrix::inMemory(2, 2);
    for (float& cell : matrix.WritableElements()) cell = value;
    return matrix;
}

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        cubes::Project const project = cubes::Project::create(arguments[1]);
        cubes::EntryStore& store = project.store();
        attempt([&] { store.parse("Trips/1/1/1/1"); });
        store.addCube("Trips");
        auto const key = store.parse("Trips/1/1/1/1");

        // An entry that does not exist is not an error: the result is an empty optional.
        std::cout << "there: " << store.find(key).has_value() << '\n';
        attempt([&] { store.get(key); });
        attempt([&] { store.put(key, matrixOf(1)); });
        attempt([&] { store.put(key, matrixOf(2), {.exists = cubes::OnExisting::fail}); });
        attempt([&] { store.put(key, TRkMatrix()); });
        {
            cubes::InUse const guard = store.use(key); // until the end of this block
            attempt([&] { store.put(key, matrixOf(3)); });
        }
        attempt([&] { store.setParent(key, key); });

        // No refused or failed put replaced the existing matrix.
        std::cout << "still: " << store.get(key).At(1, 1) << '\n';
        attempt([&] { store.put(key, matrixOf(4)); });
        std::cout << "now: " << store.get(key).At(1, 1) << '\n';
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
