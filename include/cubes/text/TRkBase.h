#pragma once

#include <cubes/Export.h>

class TRkBase;

/// Visits objects derived from TRkBase, see TRkBase::Accept.
class CUBES_API TRkVisitor {
public:
    virtual ~TRkVisitor();
    virtual void Visit(TRkBase const& object) = 0;
};

/// The root of every catalogue: optional counting of references, visitors, a validity test and
/// the object's class name. An object nobody adds references to lives like any value.
class CUBES_API TRkBase {
public:
    TRkBase() = default;
    /// The copy starts with no references.
    TRkBase(TRkBase const& other);
    TRkBase& operator=(TRkBase const& other);
    virtual ~TRkBase();

    /// Whether the object is usable.
    virtual bool Ok() const;
    /// A number that tells families of classes apart; 0 here and in every cube class.
    virtual int ClassID() const;
    /// Adds a reference and gives the new count.
    virtual long AddReference();
    /// Gives up a reference and gives the new count; the object deletes itself at 0.
    /// REQUIRES: the object was made with new and has a reference.
    virtual long ReleaseReference();
    /// The plain name of the object's own class. The text lives as long as the program.
    virtual char const* ClassName() const;
    virtual long ReferenceCount() const;
    virtual void Accept(TRkVisitor& visitor) const;
    /// Whether the object has a reference, and so is deleted with the last one.
    virtual bool IsReferenced() const;

private:
    long references_ = 0;
};
