#include "host/matrix/OmxLookups.h"

#include "host/matrix/OmxNames.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace cubes::matrix {

using hdf5::Handle;

namespace {

std::vector<std::string> linksOf(hid_t group) {
    H5G_info_t info{};
    hdf5::check(H5Gget_info(group, &info), "list a group");
    std::vector<std::string> names;
    for (hsize_t i = 0; i < info.nlinks; ++i) {
        auto const ask = [&](char* text, std::size_t size) {
            return hdf5::check(
                H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, i, text, size, H5P_DEFAULT), "list a group");
        };
        std::string name(static_cast<std::size_t>(ask(nullptr, 0)), '\0');
        ask(name.data(), name.size() + 1);
        names.push_back(std::move(name));
    }
    return names;
}

bool isDataset(hid_t group, std::string const& name, int dimensions) {
    hid_t const object = H5Oopen(group, name.c_str(), H5P_DEFAULT);
    if (object < 0) return false;
    Handle const owner(object, H5Oclose, "open an object");
    if (H5Iget_type(object) != H5I_DATASET) return false;
    Handle const space(H5Dget_space(object), H5Sclose, "read the dimensions");
    return H5Sget_simple_extent_ndims(space.get()) == dimensions;
}

constexpr std::array usualNames = {"zone", "zones", "zone_number", "zone number", "zoneid", "zone_id", "no", "taz"};

bool isUsualName(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::find(usualNames.begin(), usualNames.end(), name) != usualNames.end();
}

// "" when there is no telling.
std::string zoneLookup(std::vector<std::string> const& names) {
    auto const usual = std::find_if(names.begin(), names.end(), isUsualName);
    if (usual != names.end()) return *usual;
    return names.size() == 1 ? names.front() : std::string();
}

std::vector<double> numbersOf(hid_t group, std::string const& name, hsize_t rows) {
    Handle const lookup(H5Dopen2(group, name.c_str(), H5P_DEFAULT), H5Dclose, "open a lookup");
    Handle const type(H5Dget_type(lookup.get()), H5Tclose, "open a lookup");
    Handle const space(H5Dget_space(lookup.get()), H5Sclose, "open a lookup");
    H5T_class_t const kind = H5Tget_class(type.get());
    if (kind != H5T_INTEGER && kind != H5T_FLOAT) return {};
    if (H5Sget_simple_extent_npoints(space.get()) != static_cast<hssize_t>(rows)) return {};
    std::vector<double> numbers(rows);
    if (H5Dread(lookup.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data()) < 0) return {};
    return numbers;
}

bool isWholeNumber(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    return number >= Limits::min() && number <= Limits::max() && number == std::floor(number);
}

bool areDistinct(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
}

}

std::vector<std::string> datasetsOf(hid_t file, char const* group, int dimensions) {
    if (!hdf5::hasLink(file, group)) return {};
    Handle const opened = hdf5::openGroup(file, group);
    std::vector<std::string> names = linksOf(opened.get());
    std::erase_if(names, [&](std::string const& name) { return !isDataset(opened.get(), name, dimensions); });
    return names;
}

std::vector<std::int32_t> readZones(hid_t file, hsize_t rows) {
    std::string const name = zoneLookup(datasetsOf(file, omx::lookups, 1));
    if (name.empty()) return {};
    Handle const group = hdf5::openGroup(file, omx::lookups);
    auto const numbers = numbersOf(group.get(), name, rows);
    if (!std::all_of(numbers.begin(), numbers.end(), isWholeNumber) || !areDistinct(numbers)) return {};
    std::vector<std::int32_t> zones;
    for (double const number : numbers) zones.push_back(static_cast<std::int32_t>(number));
    return zones;
}

}
