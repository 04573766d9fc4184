// Creates a project, stores a trip table and reads it back.
#include <cubes/cubes.h>

#include <exception>
#include <iostream>
#include <numeric>

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        cubes::Project const project = cubes::Project::create(arguments[1]);
        cubes::EntryStore& store = project.store();

        TRkMatrix trips = TRkMatrix::inMemory(3, 3); // rows are origins, columns are destinations
        trips.SetZones({101, 102, 103});
        trips.WritableRow(0)[1] = 40;    // from zone 101 to zone 102
        trips.WritableRow(2)[0] = 12.5F; // from zone 103 to zone 101

        store.addCube("Trips");
        cubes::EntryKey const key = store.parse("Trips/1/1/1/1"); // purpose, mode, time period, user class
        store.put(key, trips);

        TRkMatrix const stored = store.get(key);
        auto const elements = stored.Elements();
        std::cout << "103 to 101: " << stored.At(103, 101) << '\n'
                  << "total: " << std::accumulate(elements.begin(), elements.end(), 0.0) << '\n';
        return 0;
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
