#include "tool/commands/Commands.h"

namespace cubes::tool {

std::vector<std::unique_ptr<Command>> allCommands() {
    constexpr std::unique_ptr<Command> (*makers[])() = {makeInit, makeDemo, makeAdd, makeList, makeEntries, makeImport,
        makeExport, makeShow, makeCell, makeCopy, makeMove, makeClear, makeRemove, makeParent, makeChildren, makeTree,
        makeUse, makeRoutesImport, makeRoutesShow, makeRoutesExport, makeRoutesFields, makeRoutesSelect};
    std::vector<std::unique_ptr<Command>> commands;
    for (auto const make : makers) commands.push_back(make());
    return commands;
}

}
