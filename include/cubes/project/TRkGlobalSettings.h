#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkFString.h>

#include <map>
#include <string>

class TRkObject;

/// The settings of one project: its directories, and objects stored by key.
class CUBES_API TRkGlobalSettings {
public:
    TRkGlobalSettings() = default;
    /// Directories with or without a trailing delimiter.
    TRkGlobalSettings(TRkFString matrixDirectory, TRkFString workingDirectory);

    /// The object stored under `key`, still owned by the caller that stored it; null when there is none.
    TRkObject* Get(char const* key) const;
    /// Stores an object without taking ownership; null removes the entry. A null key does nothing.
    void Set(char const* key, TRkObject* value);

    TRkFString MatrixDirectory() const { return matrixDirectory_; }
    TRkFString WorkingDirectory() const { return workingDirectory_; }

private:
    TRkFString matrixDirectory_;
    TRkFString workingDirectory_;
    std::map<std::string, TRkObject*, std::less<>> objects_;
};
