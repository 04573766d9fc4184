#pragma once

#include <cubes/Export.h>

/// Data that a caller attaches to an entry of a six-key cube; it knows the key of its entry.
///
/// Reference-counted: the creator holds the first reference, and the last release deletes the object. It crosses
/// library boundaries, so the order of its operations is fixed and it has no virtual destructor: callers never delete
/// it.
class CUBES_API CubeDataInterface {
public:
    /// Adds a reference.
    virtual void addRef() = 0;
    /// Releases a reference and returns the new count; the object deletes itself at 0.
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
