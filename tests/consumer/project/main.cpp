#include <cubes/cubes.h>

#include <iostream>

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        cubes::Project project = cubes::Project::create(arguments[1]);

        TRkMatrix trips = TRkMatrix::inMemory(387, 387); // rows, columns; elements 0
        trips.RowAt(0, 0)[5] = 12.5F;

        TRkMatCubes cubes(project.settings(), ".odm", false);
        cubes.Set("Base", 1, 1, 1, 1, trips, RkLockState(0), false); // purpose, mode, time, user
        std::cout << cubes.Get("Base", 1, 1, 1, 1, 0, 5, RkLockState(0), false) << '\n';
        return 0;
    } catch (TRkException const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
