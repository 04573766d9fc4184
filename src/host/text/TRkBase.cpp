#include <cubes/text/TRkBase.h>

#include "host/platform/CallStack.h"

#include <typeinfo>

// Defined here so that the class has one definition: down-casts work across library boundaries.
TRkObject::~TRkObject() = default;

TRkVisitor::~TRkVisitor() = default;

TRkBase::TRkBase(TRkBase const&) {}

TRkBase& TRkBase::operator=(TRkBase const&) {
    return *this;
}

TRkBase::~TRkBase() = default;

bool TRkBase::Ok() const {
    return true;
}

int TRkBase::ClassID() const {
    return 0;
}

long TRkBase::AddReference() {
    return ++references_;
}

long TRkBase::ReleaseReference() {
    long const left = --references_;
    if (left < 1) delete this;
    return left;
}

char const* TRkBase::ClassName() const {
    return cubes::platform::className(typeid(*this));
}

long TRkBase::ReferenceCount() const {
    return references_;
}

void TRkBase::Accept(TRkVisitor& visitor) const {
    visitor.Visit(*this);
}

bool TRkBase::IsReferenced() const {
    return references_ > 0;
}
