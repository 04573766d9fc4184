#pragma once

namespace Metadata {

/// What all descriptions of stored data have in common. They count their references: who makes one
/// has the first, and it frees itself with the last.
class MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataInterface";

    virtual void addRef() = 0;
    /// Gives the new count. At 0 the object is gone.
    virtual long release() = 0;
    virtual long version() const = 0;
    /// A new object with the same contents, of which the caller owns one reference.
    virtual MetadataInterface* dup() const = 0;
    /// The plain name of the object's class: "Field".
    virtual char const* getClassName() const = 0;
    /// The same as isA.
    virtual bool hasA(char const* name) const = 0;
    /// Whether that is the name of the object's class or of its interface.
    virtual bool isA(char const* name) const = 0;

protected:
    ~MetadataInterface() = default;
};

}
