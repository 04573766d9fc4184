#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/Reference.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

/// Descriptions of the fields of route data.
namespace Metadata {

/// The operations of every description. Descriptions are reference-counted: the creator holds the
/// first reference, and the last release deletes the object.
class MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataInterface";

    virtual void addRef() = 0;
    /// Returns the new count. At 0 the object is deleted.
    virtual long release() = 0;
    virtual long version() const = 0;
    /// Returns a new object with the same contents; the caller owns one reference.
    virtual MetadataInterface* dup() const = 0;
    /// The name of the object's class: "Field".
    virtual char const* getClassName() const = 0;
    /// The same as isA.
    virtual bool hasA(char const* name) const = 0;
    /// Whether that is the name of the object's class or of its interface.
    virtual bool isA(char const* name) const = 0;

protected:
    ~MetadataInterface() = default;
};

/// A text.
class MetadataStringInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataStringInterface";

    MetadataStringInterface* dup() const override = 0;
    /// Valid until the text is set again.
    virtual char const* get() const = 0;
    /// Null sets the empty text.
    virtual void set(char const* text) = 0;

protected:
    ~MetadataStringInterface() = default;
};

/// A whole number.
class MetadataLongInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataLongInterface";

    MetadataLongInterface* dup() const override = 0;
    virtual long get() const = 0;
    virtual void set(long const& value) = 0;

protected:
    ~MetadataLongInterface() = default;
};

/// A whole number that is not negative.
class MetadataUnsignedLongInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataUnsignedLongInterface";

    MetadataUnsignedLongInterface* dup() const override = 0;
    virtual unsigned long get() const = 0;
    virtual void set(unsigned long const& value) = 0;

protected:
    ~MetadataUnsignedLongInterface() = default;
};

/// A field of route data. Accessors add a reference to the part that they return, which the caller
/// releases; the part may outlive the field.
class MetadataFieldInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataFieldInterface";

    MetadataFieldInterface* dup() const override = 0;
    virtual MetadataStringInterface* getName() const = 0;
    virtual MetadataStringInterface* getType() const = 0;
    virtual MetadataLongInterface* getPrecision() const = 0;
    virtual MetadataUnsignedLongInterface* getSize() const = 0;
    virtual void setName(char const* name) = 0;
    virtual void setType(char const* type) = 0;
    virtual void setPrecision(long precision) = 0;
    virtual void setSize(unsigned long size) = 0;

protected:
    ~MetadataFieldInterface() = default;
};

/// Implements reference counting and class names for a description. Create objects with new.
template <typename Interface>
class Counted : public Interface {
public:
    Counted() = default;
    virtual ~Counted() = default;
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;

    void addRef() final { ++references_; }
    long release() final {
        long const left = --references_;
        if (left < 1) delete this;
        return left;
    }
    /// 1.
    long version() const final { return 1; }
    bool hasA(char const* name) const final { return isA(name); }
    bool isA(char const* name) const final {
        return name &&
               (std::strcmp(name, this->getClassName()) == 0 || std::strcmp(name, Interface::InterfaceName) == 0);
    }

private:
    long references_ = 1;
};

/// One value, offered through its interface.
template <typename Value, typename Interface>
class BasicType final : public Counted<Interface> {
public:
    explicit BasicType(Value const& value = Value()) : value_(value) {}

    BasicType* dup() const override { return new BasicType(value_); }
    char const* getClassName() const override { return "BasicType"; }
    Value get() const override { return value_; }
    void set(Value const& value) override { value_ = value; }

private:
    Value value_;
};

/// A text in the platform's narrow encoding.
class CUBES_API String final : public Counted<MetadataStringInterface> {
public:
    /// Null is the empty text.
    explicit String(char const* text = nullptr);
    ~String() override;

    String* dup() const override;
    char const* getClassName() const override;
    char const* get() const override;
    void set(char const* text) override;

private:
    std::string text_;
};

/// A field of route data. A new one has empty texts, precision 0 and size 0.
class CUBES_API Field final : public Counted<MetadataFieldInterface> {
public:
    Field();
    ~Field() override;

    Field* dup() const override;
    char const* getClassName() const override;
    MetadataStringInterface* getName() const override;
    MetadataStringInterface* getType() const override;
    MetadataLongInterface* getPrecision() const override;
    MetadataUnsignedLongInterface* getSize() const override;
    void setName(char const* name) override;
    void setType(char const* type) override;
    void setPrecision(long precision) override;
    void setSize(unsigned long size) override;

private:
    using Long = BasicType<long, MetadataLongInterface>;
    using UnsignedLong = BasicType<unsigned long, MetadataUnsignedLongInterface>;

    cubes::Reference<String> name_;
    cubes::Reference<String> type_;
    cubes::Reference<Long> precision_;
    cubes::Reference<UnsignedLong> size_;
};

/// Descriptions in order. `Pointer`: a pointer to their class.
template <typename Pointer>
class Vector final : public Counted<MetadataInterface> {
public:
    /// With copies of all items.
    Vector* dup() const override {
        cubes::Reference<Vector> copy(new Vector);
        for (auto const& item : items_) copy->items_.emplace_back(item->dup());
        return copy.release();
    }
    char const* getClassName() const override { return "Vector"; }

    /// Adds a reference to the item and releases it at the end.
    void append(Pointer item) {
        item->addRef();
        items_.emplace_back(item);
    }
    std::size_t size() const noexcept { return items_.size(); }
    /// The item, without a reference. REQUIRES: index < size().
    Pointer operator[](std::size_t index) const noexcept { return items_[index].get(); }

private:
    std::vector<cubes::Reference<std::remove_pointer_t<Pointer>>> items_;
};

}
