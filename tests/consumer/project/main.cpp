// A program as an application would write it: it sees the installed headers and nothing else.
#include <cubes/core/TRkCubesException.h>
#include <cubes/text/TRkFString.h>

#include <iostream>

int main(int count, char** arguments) {
    if (count != 2) return 2;
    TRkFString const directory = TRkFString::Directory(arguments[1]);
    if (!directory.MkDir() || !directory.Exists() || !directory.RmDir(true)) return 3;
    try {
        throw TRkCubesException(TRkCubesException::ecCubeExists);
    } catch (TRkException const& error) {
        std::cout << error.what() << '\n';
        return TRkString(error.what()) == TRkString("Cube already exists") ? 0 : 1;
    }
}
