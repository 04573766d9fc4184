# For the other scripts to source: builds what users run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build/release

# build_release [CMake option]...: configures and builds the preset "release". Compiler warnings are errors
# only where changes are checked: a user's compiler may be one that we do not know.
build_release() {
    local strict=OFF
    [ "${CI:-}" != true ] || strict=ON
    (cd "$root" && cmake --preset release -DCUBES_WARNINGS_AS_ERRORS=$strict "$@" && cmake --build --preset release)
}
