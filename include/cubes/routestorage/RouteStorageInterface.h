#pragma once

#include <cstdint>

/// The interface between the cubes library and a route-storage provider; the only header that a
/// provider needs.
///
/// A provider is a library "routeprovider64.dll" that exports, with C linkage,
///
///     CreateSettingsInterface                          a SettingsFactory
///     CreateVelmoraRouteStorageRouteSetInterface       a RouteSetFactory
///     CreateVelmoraRouteStorageDataSetInterface        a DataSetFactory
///
/// and a library "vlinterfaceutilities64.dll" that exports VlInterfaceGetLastError, a LastErrorGetter.
///
/// Rules for both sides:
/// - Objects are reference-counted: a factory returns an object with count 0, and the release that
///   brings the count below 1 deletes it. The receiver of an object releases it once, and adds a
///   reference with addRef before sharing it.
/// - No exception passes the interface. Every operation except addRef, release, getFileName and those
///   of AdditionalDataHeaderInterface first clears its thread's last-error text, and sets it to the
///   cause when it fails.
/// - Virtual functions have a fixed order, without overloads and virtual destructors, and use plain
///   types only, so that the order is the same for every compiler. New operations are appended.
/// - Operations that are not pure return rrNotOffered by default: a provider may omit them.
/// - One thread at a time may use an object. Several may read one that was opened for reading.
/// - Texts are in the platform's narrow encoding and end with a zero byte.
namespace VL::Interface {

constexpr char const* VLINTERFACEUTILITIES_DLL_NAME = "vlinterfaceutilities64.dll";
/// The name only: nothing loads this library.
constexpr char const* SCRIPT_INTERFACE_DLL_NAME = "ScriptInterface64.dll";

/// How a file is opened: the low byte of the mode. Other values are up to the provider.
enum RouteOpenMode : long {
    romRead = 0,   ///< An existing file, to read.
    romCreate = 1, ///< A new, empty file, which replaces an existing one at once.
    romExtend = 2, ///< An existing file, to read and to extend.
};

/// The result of an operation. Negative: no answer.
enum RouteResult : int {
    rrDone = 1,        ///< Done, or found.
    rrAbsent = 0,      ///< Not found; not an error.
    rrFailed = -1,     ///< Failed without any change; the last-error text holds the cause.
    rrNotOffered = -2, ///< This provider does not have the operation.
};

/// The type of a field of route data, and of one of its values in memory.
enum RouteFieldType : int {
    rftBoolean = 0,  ///< std::uint8_t, 0 or 1
    rftBytes = 1,    ///< std::uint8_t
    rftSmallint = 2, ///< std::int16_t
    rftInteger = 3,  ///< std::int32_t
    rftFloat = 4,    ///< float
    rftDouble = 5,   ///< double
    rftUnknown = 6,  ///< No such field.
};

/// One route. Routes of a set have numbers from 0 in the order in which they were added.
struct Route {
    std::int32_t origin;        ///< Zone number.
    std::int32_t destination;   ///< Zone number.
    float share;                ///< Share of the OD pair's trips on this route, or trips; a finite number.
    std::uint32_t const* links; ///< Link numbers in travel order; a link may occur twice.
    std::int64_t linkCount;     ///< 0 for a route without links; `links` may then be null.
};

/// Route numbers.
struct RouteNumbers {
    std::uint32_t const* numbers;
    std::int64_t count;
};

/// One field of route data: a value for each route of the set that the data belong to, by route number.
struct RouteField {
    char const* name; ///< Not empty, without control characters.
    RouteFieldType type;
    void const* values; ///< `count` values of that type; may be null when there are none.
    std::int64_t count;
};

/// Settings for opening a route file, made from the file's name.
class SettingsInterface {
public:
    virtual void addRef() = 0;
    /// Returns the new count; below 1 the object is deleted.
    virtual long release() = 0;

protected:
    ~SettingsInterface() = default;
};

/// A route file, the base of route sets and route data. The factory sets its name; nothing is read
/// or written before open.
class RouteStorageInterface {
public:
    virtual void addRef() = 0;
    /// Returns the new count; below 1 the object is deleted with everything that was not committed.
    virtual long release() = 0;
    /// Opens the file, again if it is open. A failure is reported by the last-error text only and
    /// leaves the object closed. The settings may be null and are not kept.
    virtual void open(long mode, SettingsInterface* settings) = 0;
    /// The path that the factory was given. Valid as long as the object.
    virtual char const* getFileName() const = 0;
    /// Sets the cube type and the key of the file's entry, which the next write stores in the file.
    /// A file that is open for adding is written at once, so that it can be copied afterwards.
    virtual void setCubeType(int cubeType) = 0;
    virtual void setKey(short purpose, short mode, short time, short user, short result, short iteration) = 0;

protected:
    ~RouteStorageInterface() = default;
};

/// A set of routes stored in a file.
///
/// Pointers that reading returns belong to the object and are valid until it is released, opened
/// again or extended. Reading includes what was added but not committed.
class VelmoraRouteStorageRouteSetInterface : public RouteStorageInterface {
public:
    /// Adds a route; the links are copied. REQUIRES: opened for creating or extending.
    virtual RouteResult addRoute(Route const& /*route*/) { return rrNotOffered; }
    /// Writes the file with everything that was added, as an atomic replacement: after a failure the
    /// old file remains, and so do the additions, to try again.
    virtual RouteResult commit() { return rrNotOffered; }
    /// The number of routes; a negative RouteResult when there is no answer.
    virtual std::int64_t countRoutes() const { return rrNotOffered; }
    /// The number of links of all routes together; a negative RouteResult when there is no answer.
    virtual std::int64_t countLinks() const { return rrNotOffered; }
    /// Reads a route by its number, from 0 to countRoutes() - 1. rrAbsent leaves `route` unchanged.
    virtual RouteResult getRoute(std::int64_t /*number*/, Route* /*route*/) const { return rrNotOffered; }
    /// The routes of an OD pair, by number. Without any: rrAbsent and an empty list.
    virtual RouteResult findRoutesOfPair(
        std::int32_t /*origin*/, std::int32_t /*destination*/, RouteNumbers* /*found*/) const {
        return rrNotOffered;
    }
    /// The routes of an origin, by destination, then number.
    virtual RouteResult findRoutesOfOrigin(std::int32_t /*origin*/, RouteNumbers* /*found*/) const {
        return rrNotOffered;
    }
    /// The routes over a link, by number, each once.
    virtual RouteResult findRoutesOfLink(std::uint32_t /*link*/, RouteNumbers* /*found*/) const { return rrNotOffered; }

protected:
    ~VelmoraRouteStorageRouteSetInterface() = default;
};

/// The names and types of the fields of route data at the time when this object was created.
class AdditionalDataHeaderInterface {
public:
    virtual void addRef() = 0;
    /// Returns the new count; below 1 the object is deleted.
    virtual long release() = 0;
    /// A RouteFieldType; rftUnknown when there is no such field.
    virtual int getFieldType(char const* name) const = 0;
    /// The names in order, separated by commas. A name with blanks, commas or quotation marks is
    /// quoted, with its own marks doubled. Valid as long as the object.
    virtual char const* getFieldNames() const = 0;

protected:
    ~AdditionalDataHeaderInterface() = default;
};

/// Values of the routes of a set, stored in a separate file: fields with one value a route. Reading
/// and committing work as for a route set.
class VelmoraRouteStorageDataSetInterface : public RouteStorageInterface {
public:
    /// Returns a new object, which the caller releases once; null when there is none.
    virtual AdditionalDataHeaderInterface* getAdditionalDataHeader() = 0;
    /// Adds a field of a new name; the values are copied. All fields have the same number of
    /// values. REQUIRES: opened for creating or extending.
    virtual RouteResult addField(RouteField const& /*field*/) { return rrNotOffered; }
    virtual RouteResult commit() { return rrNotOffered; }
    /// The number of values of each field, 0 without fields; a negative RouteResult when there is no answer.
    virtual std::int64_t countRoutes() const { return rrNotOffered; }
    /// The number of fields; a negative RouteResult when there is no answer.
    virtual std::int64_t countFields() const { return rrNotOffered; }
    /// Reads a field with all values by its position, from 0 in the order of adding. rrAbsent leaves
    /// `field` unchanged.
    virtual RouteResult getField(std::int64_t /*place*/, RouteField* /*field*/) const { return rrNotOffered; }
    /// The same by name.
    virtual RouteResult findField(char const* /*name*/, RouteField* /*field*/) const { return rrNotOffered; }
    /// Writes the values of one route to `values`: countFields() numbers in the order of the fields. A
    /// double represents a value of every type exactly. rrAbsent leaves them unchanged.
    virtual RouteResult getRouteValues(std::int64_t /*route*/, double* /*values*/) const { return rrNotOffered; }

protected:
    ~VelmoraRouteStorageDataSetInterface() = default;
};

/// The provider's exports: each takes the path of a route file and returns a new object, or null.
using SettingsFactory = SettingsInterface*(char const* fileName);
using RouteSetFactory = VelmoraRouteStorageRouteSetInterface*(char const* fileName);
using DataSetFactory = VelmoraRouteStorageDataSetInterface*(char const* fileName);
/// The export of the utilities library: returns the error of the calling thread's last operation,
/// "" for success. Valid until the thread's next operation.
using LastErrorGetter = char const*();

}
