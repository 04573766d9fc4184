#include <cubes/routestorage/RouteStorageCubeData.h>

using VL::Interface::RouteStorageInterface;

RouteStorageCubeData::RouteStorageCubeData() = default;
RouteStorageCubeData::RouteStorageCubeData(RouteStorageCubeData const&) = default;
RouteStorageCubeData& RouteStorageCubeData::operator=(RouteStorageCubeData const&) = default;

RouteStorageCubeData::~RouteStorageCubeData() {
    if (storage_) storage_->release();
}

void RouteStorageCubeData::addRef() {
    ++references_;
}

long RouteStorageCubeData::release() {
    long const left = --references_;
    if (left < 1) delete this;
    return left;
}

void RouteStorageCubeData::setRouteStorage(RouteStorageInterface* storage) {
    if (storage_) storage_->release();
    storage_ = storage;
    if (storage_) storage_->addRef();
}

RouteStorageInterface* RouteStorageCubeData::getRouteStorage() const {
    if (storage_) storage_->addRef();
    return storage_;
}

void RouteStorageCubeData::setPurpose(long purpose) {
    key_.purpose = purpose;
}

long RouteStorageCubeData::getPurpose() const {
    return key_.purpose;
}

void RouteStorageCubeData::setMode(long mode) {
    key_.mode = mode;
}

long RouteStorageCubeData::getMode() const {
    return key_.mode;
}

void RouteStorageCubeData::setTime(long time) {
    key_.time = time;
}

long RouteStorageCubeData::getTime() const {
    return key_.time;
}

void RouteStorageCubeData::setUser(long user) {
    key_.user = user;
}

long RouteStorageCubeData::getUser() const {
    return key_.user;
}

void RouteStorageCubeData::setResult(long result) {
    key_.result = result;
}

long RouteStorageCubeData::getResult() const {
    return key_.result;
}

void RouteStorageCubeData::setIteration(long iteration) {
    key_.iteration = iteration;
}

long RouteStorageCubeData::getIteration() const {
    return key_.iteration;
}

void RouteStorageCubeData::setParentPurpose(long purpose) {
    parent_.purpose = purpose;
}

long RouteStorageCubeData::getParentPurpose() const {
    return parent_.purpose;
}

void RouteStorageCubeData::setParentMode(long mode) {
    parent_.mode = mode;
}

long RouteStorageCubeData::getParentMode() const {
    return parent_.mode;
}

void RouteStorageCubeData::setParentTime(long time) {
    parent_.time = time;
}

long RouteStorageCubeData::getParentTime() const {
    return parent_.time;
}

void RouteStorageCubeData::setParentUser(long user) {
    parent_.user = user;
}

long RouteStorageCubeData::getParentUser() const {
    return parent_.user;
}

void RouteStorageCubeData::setParentResult(long result) {
    parent_.result = result;
}

long RouteStorageCubeData::getParentResult() const {
    return parent_.result;
}

void RouteStorageCubeData::setParentIteration(long iteration) {
    parent_.iteration = iteration;
}

long RouteStorageCubeData::getParentIteration() const {
    return parent_.iteration;
}

void RouteStorageCubeData::setParentCubeNr(long cubenr) {
    parentCubeNr_ = cubenr;
}

long RouteStorageCubeData::getParentCubeNr() const {
    return parentCubeNr_;
}
