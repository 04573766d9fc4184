#pragma once

#include <cubes/Export.h>

/// Data that a caller attaches to an entry of a six-key cube; it knows the key of its entry.
///
/// Counts its references: who makes one holds the first, and it frees itself when the last is
/// given up. It crosses library boundaries, so the order of its operations is fixed and it has no
/// virtual destructor: it is never deleted from outside.
class CUBES_API CubeDataInterface {
public:
    /// Takes one more reference.
    virtual void addRef() = 0;
    /// Gives up a reference and gives the new count; the object frees itself at 0.
    virtual long release() = 0;

    virtual void setPurpose(long) = 0;
    virtual long getPurpose() const = 0;
    virtual void setMode(long) = 0;
    virtual long getMode() const = 0;
    virtual void setTime(long) = 0;
    virtual long getTime() const = 0;
    virtual void setUser(long) = 0;
    virtual long getUser() const = 0;
    virtual void setResult(long) = 0;
    virtual long getResult() const = 0;
    virtual void setIteration(long) = 0;
    virtual long getIteration() const = 0;

protected:
    CubeDataInterface() = default;
    CubeDataInterface(CubeDataInterface const&) = default;
    CubeDataInterface& operator=(CubeDataInterface const&) = default;
    ~CubeDataInterface() = default;
};
