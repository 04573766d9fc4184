#include "support/SystemMessages.h"

namespace cubes::test {

std::string noSuchFile() {
    return "No such file or directory";
}

std::string noSuchFileSentence() {
    return noSuchFile();
}

std::string noSuchDirectory() {
    return noSuchFile();
}

std::string isADirectory() {
    return "Is a directory";
}

}
