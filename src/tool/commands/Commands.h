#pragma once

#include "tool/Command.h"

#include <memory>

namespace cubes::tool {

std::unique_ptr<Command> makeInit();
std::unique_ptr<Command> makeDemo();
std::unique_ptr<Command> makeAdd();
std::unique_ptr<Command> makeList();
std::unique_ptr<Command> makeEntries();
std::unique_ptr<Command> makeImport();
std::unique_ptr<Command> makeExport();
std::unique_ptr<Command> makeShow();
std::unique_ptr<Command> makeCell();
std::unique_ptr<Command> makeCopy();
std::unique_ptr<Command> makeMove();
std::unique_ptr<Command> makeClear();
std::unique_ptr<Command> makeRemove();
std::unique_ptr<Command> makeParent();
std::unique_ptr<Command> makeChildren();
std::unique_ptr<Command> makeTree();
std::unique_ptr<Command> makeUse();
std::unique_ptr<Command> makeRoutesImport();
std::unique_ptr<Command> makeRoutesShow();
std::unique_ptr<Command> makeRoutesExport();
std::unique_ptr<Command> makeRoutesFields();
std::unique_ptr<Command> makeRoutesSelect();

}
