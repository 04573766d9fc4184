#include "Stamp.h"

#include "Hdf5Numbers.h"

namespace cubes::routes {

namespace {

constexpr std::int32_t version = 1;
constexpr std::int32_t noCube = 0;
constexpr Key noKey = {-1, -1, -1, -1, -1, -1};

auto const wholeNumber = hdf5::typeOf<std::int32_t>;
auto const shortNumber = hdf5::typeOf<std::int16_t>;

}

void writeStamp(hid_t file, Stamp const& stamp) {
    std::int32_t const cubeType = stamp.cubeType.value_or(noCube);
    Key const key = stamp.key.value_or(noKey);
    hdf5::writeAttribute(file, "cube_type", wholeNumber(), &cubeType, 1);
    hdf5::writeAttribute(file, "key", shortNumber(), key.data(), key.size());
}

void writeRoot(hid_t file, std::string_view kind, Stamp const& stamp) {
    hdf5::writeText(file, "format", kind);
    hdf5::writeAttribute(file, "version", wholeNumber(), &version, 1);
    writeStamp(file, stamp);
}

Stamp readRoot(hid_t file, std::string_view kind) {
    std::string const found = H5Aexists(file, "format") > 0 ? hdf5::readText(file, "format") : "something else";
    if (found != kind) throw std::runtime_error("it holds " + found + ", not " + std::string(kind));
    std::int32_t number = 0;
    hdf5::readAttribute(file, "version", wholeNumber(), &number, 1);
    if (number != version) throw std::runtime_error("its version " + std::to_string(number) + " is not known here");
    std::int32_t cubeType = 0;
    Key key{};
    hdf5::readAttribute(file, "cube_type", wholeNumber(), &cubeType, 1);
    hdf5::readAttribute(file, "key", shortNumber(), key.data(), key.size());
    return {cubeType, key};
}

}
