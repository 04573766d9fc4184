#include "tool/CommandLine.h"
#include "tool/Terminal.h"

int main(int argc, char** argv) {
    cubes::tool::prepareStreams();
    return static_cast<int>(cubes::tool::runTool(argc, argv));
}
