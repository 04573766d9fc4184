#include "tool/CommandLine.h"

int main(int argc, char** argv) {
    return static_cast<int>(cubes::tool::runTool(argc, argv));
}
