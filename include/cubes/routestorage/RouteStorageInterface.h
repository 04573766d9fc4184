#pragma once

#include <cstdint>

/// What crosses the border between the cubes library and a route-storage provider: all that a
/// provider needs to see.
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
/// - Objects count their references: a factory hands out an object with count 0, and the release
///   that brings the count below 1 frees it. Whoever receives an object gives it up with one
///   release, and takes a reference with addRef before sharing it.
/// - No exception crosses the border. Every operation but addRef, release, getFileName and those of
///   AdditionalDataHeaderInterface begins by emptying the last-error text of its thread, and leaves
///   the reason there when it fails.
/// - Slots stand in a fixed order, without overloads and virtual destructors, and only plain types
///   cross: the order is the same for every compiler. New operations come last.
/// - Operations that are not pure have a body that says "not offered": a provider may leave them out.
/// - One thread at a time may use an object. Several may read one that was opened for reading.
/// - Texts are in the platform's narrow encoding and end with a zero byte.
namespace VL::Interface {

constexpr char const* VLINTERFACEUTILITIES_DLL_NAME = "vlinterfaceutilities64.dll";
/// The name only: nothing loads this library.
constexpr char const* SCRIPT_INTERFACE_DLL_NAME = "ScriptInterface64.dll";

/// How a file is opened: the low byte of the mode. What other values mean is the provider's affair.
enum RouteOpenMode : long {
    romRead = 0,   ///< An existing file, to read.
    romCreate = 1, ///< A new, empty file, which at once takes the place of an old one.
    romExtend = 2, ///< An existing file, to read and to add to.
};

/// How an operation ended. Negative: no answer was given.
enum RouteResult : int {
    rrDone = 1,        ///< Done, or found.
    rrAbsent = 0,      ///< What was asked for is not there; no error.
    rrFailed = -1,     ///< The last-error text tells why. Nothing was changed.
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
    float share;                ///< Share of the pair's trips that take the route, or trips; a finite number.
    std::uint32_t const* links; ///< Link numbers in travel order; one may come twice.
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
    void const* values; ///< `count` values as the type tells; may be null when there are none.
    std::int64_t count;
};

/// Settings for opening a route file, made from the file's name.
class SettingsInterface {
public:
    virtual void addRef() = 0;
    /// Gives the new count. Below 1 the object is gone.
    virtual long release() = 0;

protected:
    ~SettingsInterface() = default;
};

/// A route file: what route sets and route data have in common. An object names its file from the
/// beginning; nothing is read or written before open.
class RouteStorageInterface {
public:
    virtual void addRef() = 0;
    /// Gives the new count. Below 1 the object is gone, with what was added and not committed.
    virtual long release() = 0;
    /// Opens the file, anew when it is open already. Fails by the last-error text alone; the
    /// object is then closed. The settings may be null, and are not kept.
    virtual void open(long mode, SettingsInterface* settings) = 0;
    /// The file as the factory was told. Lives as long as the object.
    virtual char const* getFileName() const = 0;
    /// The cube type and the entry that the file belongs to, kept in the file with the next
    /// writing; in a file that is open for adding at once, so that it can be copied afterwards.
    virtual void setCubeType(int cubeType) = 0;
    virtual void setKey(short purpose, short mode, short time, short user, short result, short iteration) = 0;

protected:
    ~RouteStorageInterface() = default;
};

/// A set of routes stored in a file.
///
/// Pointers that reading gives belong to the object. They hold until it is given up, opened again
/// or added to. Reading sees all that was added, committed or not.
class VelmoraRouteStorageRouteSetInterface : public RouteStorageInterface {
public:
    /// Adds a route; the links are copied. REQUIRES: opened for creating or extending.
    virtual RouteResult addRoute(Route const& /*route*/) { return rrNotOffered; }
    /// Writes the file with all that was added. The file is whole at any time: as it was before,
    /// which it stays when this fails, or as it is now. What was added stays too, to try again.
    virtual RouteResult commit() { return rrNotOffered; }
    /// The number of routes; a negative RouteResult when there is no answer.
    virtual std::int64_t countRoutes() const { return rrNotOffered; }
    /// The number of links of all routes together; a negative RouteResult when there is no answer.
    virtual std::int64_t countLinks() const { return rrNotOffered; }
    /// A route by its number: with countRoutes a walk over all. rrAbsent leaves `route` as it is.
    virtual RouteResult getRoute(std::int64_t /*number*/, Route* /*route*/) const { return rrNotOffered; }
    /// The routes from a zone to another, by number. When there are none: rrAbsent, and an empty list.
    virtual RouteResult findRoutesOfPair(
        std::int32_t /*origin*/, std::int32_t /*destination*/, RouteNumbers* /*found*/) const {
        return rrNotOffered;
    }
    /// The routes from a zone to everywhere, by destination, then number.
    virtual RouteResult findRoutesOfOrigin(std::int32_t /*origin*/, RouteNumbers* /*found*/) const {
        return rrNotOffered;
    }
    /// The routes over a link, by number, each once.
    virtual RouteResult findRoutesOfLink(std::uint32_t /*link*/, RouteNumbers* /*found*/) const { return rrNotOffered; }

protected:
    ~VelmoraRouteStorageRouteSetInterface() = default;
};

/// The names and types of the fields of route data, as they were when this object was handed out.
class AdditionalDataHeaderInterface {
public:
    virtual void addRef() = 0;
    /// Gives the new count. Below 1 the object is gone.
    virtual long release() = 0;
    /// A RouteFieldType; rftUnknown when there is no such field.
    virtual int getFieldType(char const* name) const = 0;
    /// The names in order, separated by commas. A name with blanks, commas or quotation marks
    /// stands in quotation marks, with its own doubled. Lives as long as the object.
    virtual char const* getFieldNames() const = 0;

protected:
    ~AdditionalDataHeaderInterface() = default;
};

/// Values that belong to the routes of a set, stored in a file of their own: fields with one value a
/// route. What is said of reading and committing a route set holds here too.
class VelmoraRouteStorageDataSetInterface : public RouteStorageInterface {
public:
    /// A new object, to be given up with one release; null when there is none.
    virtual AdditionalDataHeaderInterface* getAdditionalDataHeader() = 0;
    /// Adds a field of a new name; the values are copied. All fields have the same number of
    /// values. REQUIRES: opened for creating or extending.
    virtual RouteResult addField(RouteField const& /*field*/) { return rrNotOffered; }
    virtual RouteResult commit() { return rrNotOffered; }
    /// The number of values of each field, 0 without fields; a negative RouteResult when there is no answer.
    virtual std::int64_t countRoutes() const { return rrNotOffered; }
    /// The number of fields; a negative RouteResult when there is no answer.
    virtual std::int64_t countFields() const { return rrNotOffered; }
    /// A field by its place, from 0 in the order in which they were added, with all values.
    /// rrAbsent leaves `field` as it is.
    virtual RouteResult getField(std::int64_t /*place*/, RouteField* /*field*/) const { return rrNotOffered; }
    /// The same by name.
    virtual RouteResult findField(char const* /*name*/, RouteField* /*field*/) const { return rrNotOffered; }
    /// The values of one route: countFields() numbers in the order of the fields, put where `values`
    /// points. A double holds a value of any type exactly. rrAbsent leaves them as they are.
    virtual RouteResult getRouteValues(std::int64_t /*route*/, double* /*values*/) const { return rrNotOffered; }

protected:
    ~VelmoraRouteStorageDataSetInterface() = default;
};

/// The provider's exports: each takes the path of a route file and gives a new object, null when
/// there is none to be had.
using SettingsFactory = SettingsInterface*(char const* fileName);
using RouteSetFactory = VelmoraRouteStorageRouteSetInterface*(char const* fileName);
using DataSetFactory = VelmoraRouteStorageDataSetInterface*(char const* fileName);
/// The export of the utilities library: what went wrong in the calling thread's last operation, ""
/// when nothing did. The text holds until the thread's next operation.
using LastErrorGetter = char const*();

}
