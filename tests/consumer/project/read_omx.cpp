// Prints the zones and the elements of an OMX file's only table.

#include <cubes/cubes.h>
#include <cubes/matrix/OmxFile.h>

#include <iostream>

int main(int, char** arguments) {
    try {
        auto const file = cubes::OmxFile::open(arguments[1]);
        auto const trips = file.read(file.tables().at(0));
        for (int const zone : trips.Zones()) std::cout << zone << ' ';
        for (float const element : trips.Elements()) std::cout << element << ' ';
        std::cout << '\n';
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
