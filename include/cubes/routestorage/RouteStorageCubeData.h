#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageInterface.h>
#include <cubes/varcubes/CubeDataInterface.h>

#include <cstdint>

/// What belongs to one entry of a route cube: its key, its parent, and the storage that holds its
/// routes. The route cubes take and give no other data.
///
/// A new record has one reference, no storage, parts of -1 and a parent cube of 0. Made with new,
/// it frees itself with its last reference. The parts are kept as they are given.
///
/// A copy is shallow: it has the count of the record it was made from and the same storage, of
/// which it takes no reference. Whoever lets both end has taken one more of the storage.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nothing derives from it.
class CUBES_API RouteStorageCubeData final : public CubeDataInterface {
public:
    RouteStorageCubeData();
    RouteStorageCubeData(RouteStorageCubeData const&);
    /// The storage held before is not given up.
    RouteStorageCubeData& operator=(RouteStorageCubeData const&);
    /// Gives up the storage.
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
    /// The cube that holds the parent entry; 0: none.
    void setParentCubeNr(long);
    long getParentCubeNr() const;

    /// Gives up the storage held before, then takes a reference of the new one; null: holds none.
    /// REQUIRES: the caller has a reference of its own.
    void setRouteStorage(VL::Interface::RouteStorageInterface* storage);
    /// The storage with one more reference, which the caller has to give up; null when there is none.
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
