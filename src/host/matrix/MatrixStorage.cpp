#include <cubes/matrix/MatrixStorage.h>

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <map>
#include <mutex>

namespace cubes {

namespace {

struct Rules {
    std::mutex mutex;
    std::map<std::string, MatrixStorage> byDirectory;
};

Rules& rules() {
    static Rules instance;
    return instance;
}

// One key per directory, however its path is written.
std::string keyOf(std::string const& directory) {
    std::string key = platform::foldCase(platform::absolutePath(platform::withNativeDelimiters(directory)));
    while (key.size() > 1 && key.back() == platform::pathDelimiter()) key.pop_back();
    return key;
}

}

void setMatrixStorage(std::string const& directory, MatrixStorage const& rule) {
    std::string const key = keyOf(directory);
    std::lock_guard const lock(rules().mutex);
    rules().byDirectory[key] = rule;
}

MatrixStorage matrixStorage(std::string const& directory) {
    std::string const key = keyOf(directory);
    std::lock_guard const lock(rules().mutex);
    auto const known = rules().byDirectory.find(key);
    return known == rules().byDirectory.end() ? MatrixStorage{} : known->second;
}

}
