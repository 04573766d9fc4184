#pragma once

#include <cubes/Export.h>

/// The base of objects that the project's settings store under a key.
class CUBES_API TRkObject {
public:
    TRkObject() = default;
    TRkObject(TRkObject const&) = default;
    TRkObject& operator=(TRkObject const&) = default;
    virtual ~TRkObject();
};

class TRkBase;

/// Visits objects derived from TRkBase, see TRkBase::Accept.
class CUBES_API TRkVisitor {
public:
    virtual ~TRkVisitor();
    virtual void Visit(TRkBase const& object) = 0;
};

/// The base of every cube class: optional reference counting, visitors, a validity test and the
/// name of the class. An object without references lives like any value.
class CUBES_API TRkBase {
public:
    TRkBase() = default;
    /// The copy starts with no references.
    TRkBase(TRkBase const& other);
    TRkBase& operator=(TRkBase const& other);
    virtual ~TRkBase();

    /// Whether the object is usable.
    virtual bool Ok() const;
    /// A number for the family of classes; 0 here and in every cube class.
    virtual int ClassID() const;
    /// Adds a reference and returns the new count.
    virtual long AddReference();
    /// Releases a reference and returns the new count; the object deletes itself at 0.
    /// REQUIRES: the object was created with new and has a reference.
    virtual long ReleaseReference();
    /// The name of the object's own class. Valid as long as the program runs.
    virtual char const* ClassName() const;
    virtual long ReferenceCount() const;
    virtual void Accept(TRkVisitor& visitor) const;
    /// Whether the object has a reference, so that releasing the last one deletes it.
    virtual bool IsReferenced() const;

private:
    long references_ = 0;
};
