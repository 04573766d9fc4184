#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageInterface.h>

namespace VL::Interface {

/// The header of route data, given up at the end of this object. Not copyable.
class CUBES_API TVlAdditionalDataHeader final {
public:
    /// Takes over the caller's reference; null is no header.
    explicit TVlAdditionalDataHeader(AdditionalDataHeaderInterface* header) noexcept;
    ~TVlAdditionalDataHeader();
    TVlAdditionalDataHeader(TVlAdditionalDataHeader const&) = delete;
    TVlAdditionalDataHeader& operator=(TVlAdditionalDataHeader const&) = delete;

    /// The header, without a reference; null when there is none.
    AdditionalDataHeaderInterface* getInterface() const noexcept { return header_; }

private:
    AdditionalDataHeaderInterface* header_;
};

}
