#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageInterface.h>
#include <cubes/varcubes/CubeDataInterface.h>

#include <cstdint>

/// The data of one entry of a route cube: its key, its parent, and the storage of its routes. The
/// route cubes accept and return no other data.
///
/// A new record has one reference, no storage, key parts of -1 and a parent cube of 0. Create it
/// with new: the last release deletes it. Setters store the numbers unchanged.
///
/// A copy is shallow: it has the original's reference count and the same storage, without adding a
/// reference to it. To destroy both, add a reference to the storage first.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nothing derives from it.
class CUBES_API RouteStorageCubeData final : public CubeDataInterface {
public:
    RouteStorageCubeData();
    RouteStorageCubeData(RouteStorageCubeData const&);
    /// Does not release the storage held before.
    RouteStorageCubeData& operator=(RouteStorageCubeData const&);
    /// Releases the storage.
    ~RouteStorageCubeData();

    void addRef() override;
    long release() override;

    void setPurpose(long) override;
    long getPurpose() const override;
    void setMode(long) override;
    long getMode() const override;
    void setTime(long) override;
    long getTime() const override;
    void setUser(long) override;
    long getUser() const override;
    void setResult(long) override;
    long getResult() const override;
    void setIteration(long) override;
    long getIteration() const override;

    void setParentPurpose(long);
    long getParentPurpose() const;
    void setParentMode(long);
    long getParentMode() const;
    void setParentTime(long);
    long getParentTime() const;
    void setParentUser(long);
    long getParentUser() const;
    void setParentResult(long);
    long getParentResult() const;
    void setParentIteration(long);
    long getParentIteration() const;
    /// The cube of the parent entry; 0 for none.
    void setParentCubeNr(long);
    long getParentCubeNr() const;

    /// Releases the storage held before, then adds a reference to the new one; null for none.
    /// REQUIRES: the caller has a reference of its own.
    void setRouteStorage(VL::Interface::RouteStorageInterface* storage);
    /// Returns the storage and adds a reference, which the caller releases; null when there is none.
    VL::Interface::RouteStorageInterface* getRouteStorage() const;

private:
    struct Key {
        long purpose = -1;
        long mode = -1;
        long time = -1;
        long user = -1;
        long result = -1;
        long iteration = -1;
    };

    std::int32_t references_ = 1;
    VL::Interface::RouteStorageInterface* storage_ = nullptr;
    Key key_;
    Key parent_;
    long parentCubeNr_ = 0;
};
