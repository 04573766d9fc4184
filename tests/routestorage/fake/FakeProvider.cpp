// A route-storage provider that records its calls, counts its objects, and stores nothing. The build chooses the names
// under which its factories are exported.

#include "Exported.h"

#include <cubes/routestorage/RouteStorageInterface.h>

#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

using namespace VL::Interface;

namespace {

std::string calls;
int living = 0;
std::string fieldNames;
bool hasHeader = true;

template <typename... Parts>
void note(Parts const&... parts) {
    std::ostringstream line;
    (line << ... << parts) << '\n';
    calls += line.str();
}

std::string bareName(char const* path) {
    if (!path) return "nowhere";
    std::string const text = path;
    return text.substr(text.find_last_of("\\/") + 1);
}

// A factory's object has no reference; the release that brings the count below 1 deletes it.
template <typename Interface>
class Counted : public Interface {
public:
    explicit Counted(char const* name) : name_(name) { ++living; }
    void addRef() override { note(name_, ".addRef ", ++references_); }
    long release() override {
        long const left = --references_;
        note(name_, ".release ", left);
        if (left < 1) delete this;
        return left;
    }

protected:
    virtual ~Counted() { --living; }
    char const* name() const { return name_; }

private:
    char const* name_;
    long references_ = 0;
};

class Settings final : public Counted<SettingsInterface> {
public:
    using Counted::Counted;
};

template <typename Interface>
class Storage : public Counted<Interface> {
public:
    Storage(char const* name, char const* file) : Counted<Interface>(name), file_(file ? file : "") {
        note(this->name(), ".make ", bareName(file));
    }
    void open(long mode, SettingsInterface* settings) override {
        note(this->name(), ".open ", mode, settings ? " with settings" : " without settings");
        if ((mode & 0xFF) == romCreate) std::ofstream(file_) << "made by the fake provider";
    }
    char const* getFileName() const override {
        note(this->name(), ".getFileName");
        return file_.c_str();
    }
    void setCubeType(int cubeType) override { note(this->name(), ".setCubeType ", cubeType); }
    void setKey(short p, short m, short t, short u, short r, short i) override {
        note(this->name(), ".setKey ", p, ' ', m, ' ', t, ' ', u, ' ', r, ' ', i);
    }

private:
    std::string file_;
};

class RouteSet final : public Storage<VelmoraRouteStorageRouteSetInterface> {
public:
    using Storage::Storage;
};

class Header final : public Counted<AdditionalDataHeaderInterface> {
public:
    using Counted::Counted;
    // The type is the number that the name ends with: "t3" is a field of type 3, "t-1" of type -1.
    int getFieldType(char const* field) const override {
        note(name(), ".getFieldType ", field);
        std::string const text = field;
        std::size_t const number = text.find_first_of("-0123456789");
        return number == std::string::npos ? rftUnknown : std::stoi(text.substr(number));
    }
    char const* getFieldNames() const override {
        note(name(), ".getFieldNames");
        return fieldNames == "null" ? nullptr : fieldNames.c_str();
    }
};

class DataSet final : public Storage<VelmoraRouteStorageDataSetInterface> {
public:
    using Storage::Storage;
    AdditionalDataHeaderInterface* getAdditionalDataHeader() override {
        note(name(), ".getAdditionalDataHeader");
        return hasHeader ? new Header("header") : nullptr;
    }
};

}

extern "C" {

EXPORTED SettingsInterface* NAMED(CreateSettingsInterface)(char const* file) {
    note("settings.make ", bareName(file));
    return new Settings("settings");
}

EXPORTED VelmoraRouteStorageRouteSetInterface* NAMED(CreateVelmoraRouteStorageRouteSetInterface)(char const* file) {
    return new RouteSet("set", file);
}

EXPORTED VelmoraRouteStorageDataSetInterface* NAMED(CreateVelmoraRouteStorageDataSetInterface)(char const* file) {
    return new DataSet("data", file);
}

EXPORTED char const* FakeCalls() {
    static std::string taken;
    taken = std::exchange(calls, {});
    return taken.c_str();
}

EXPORTED int FakeLiving() {
    return living;
}

EXPORTED void FakeFields(char const* names) {
    hasHeader = names != nullptr;
    fieldNames = names ? names : "";
}
}
