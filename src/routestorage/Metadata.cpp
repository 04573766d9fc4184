#include <cubes/routestorage/Metadata.h>

namespace Metadata {

namespace {

template <typename Part>
Part* shared(cubes::Reference<Part> const& part) {
    part->addRef();
    return part.get();
}

}

String::String(char const* text) : text_(text ? text : "") {}

String::~String() = default;

String* String::dup() const {
    return new String(text_.c_str());
}

char const* String::getClassName() const {
    return "String";
}

char const* String::get() const {
    return text_.c_str();
}

void String::set(char const* text) {
    text_ = text ? text : "";
}

Field::Field() : name_(new String), type_(new String), precision_(new Long), size_(new UnsignedLong) {}

Field::~Field() = default;

Field* Field::dup() const {
    cubes::Reference<Field> copy(new Field);
    copy->setName(name_->get());
    copy->setType(type_->get());
    copy->setPrecision(precision_->get());
    copy->setSize(size_->get());
    return copy.release();
}

char const* Field::getClassName() const {
    return "Field";
}

MetadataStringInterface* Field::getName() const {
    return shared(name_);
}

MetadataStringInterface* Field::getType() const {
    return shared(type_);
}

MetadataLongInterface* Field::getPrecision() const {
    return shared(precision_);
}

MetadataUnsignedLongInterface* Field::getSize() const {
    return shared(size_);
}

void Field::setName(char const* name) {
    name_->set(name);
}

void Field::setType(char const* type) {
    type_->set(type);
}

void Field::setPrecision(long precision) {
    precision_->set(precision);
}

void Field::setSize(unsigned long size) {
    size_->set(size);
}

}
