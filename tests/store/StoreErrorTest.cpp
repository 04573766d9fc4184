#include <cubes/store/StoreError.h>

#include <gtest/gtest.h>

#include <functional>

#include "host/matrix/WriteLock.h"
#include "store/Failure.h"

namespace cubes::test {
namespace {

TEST(StoreError, saysWhatWasAskedAndWhy) {
    StoreError const error(
        Reason::inUse, "store Trips/1/1/1/1", "it is in use (users: 2)", "Trips/1/1/1/1", "/d/a.odm");
    EXPECT_STREQ(error.what(), "cannot store Trips/1/1/1/1: it is in use (users: 2)");
    EXPECT_EQ(error.reason(), Reason::inUse);
    EXPECT_EQ(error.entry(), "Trips/1/1/1/1");
    EXPECT_EQ(error.file(), "/d/a.odm");
    EXPECT_EQ(error.cause(), "it is in use (users: 2)");
}

struct Translation {
    char const* name;
    std::function<void()> work;
    Reason reason;
    char const* cause;
};

std::system_error systemError(std::errc code) {
    return std::system_error(std::make_error_code(code), "cannot write /d/a.odm");
}

// Each row throws what a layer below the store throws.
TEST(StoreError, takesTheReasonFromTheLayerBelow) {
    auto const noSpace = std::make_error_code(std::errc::no_space_on_device);
    Translation const translations[] = {
        {"full disk", [&] { throw TRkMatrixException("cannot write matrix file /d/a.odm: full", "/d/a.odm", noSpace); },
            Reason::noSpace, "full"},
        {"file without rights", [] { throw systemError(std::errc::permission_denied); }, Reason::readOnly,
            "cannot write /d/a.odm"},
        {"read-only file system", [] { throw systemError(std::errc::read_only_file_system); }, Reason::readOnly,
            "cannot write /d/a.odm"},
        {"failing disk", [] { throw systemError(std::errc::io_error); }, Reason::file, "cannot write /d/a.odm"},
        {"lock", [] { throw matrix::LockRefused("/d/a.odm"); }, Reason::locked, "try again later"},
        {"read-only database", [] { throw TRkDatabaseException("readonly", "25006"); }, Reason::readOnly, "readonly"},
        {"full database", [] { throw TRkDatabaseException("disk full", "53100"); }, Reason::noSpace, "disk full"},
        {"locked database", [] { throw TRkDatabaseException("busy", "55P03"); }, Reason::locked, "busy"},
        {"deadlock", [] { throw TRkDatabaseException("deadlock detected", "40P01"); }, Reason::locked, "deadlock"},
        {"any other database error", [] { throw TRkDatabaseException("syntax", "42601"); }, Reason::database, "syntax"},
    };
    for (auto const& [name, work, reason, cause] : translations) {
        try {
            store::reporting({"store Trips/1/1/1/1", "Trips/1/1/1/1"}, work);
            ADD_FAILURE() << name << ": nothing was thrown";
        } catch (StoreError const& error) {
            EXPECT_STREQ(nameOf(error.reason()), nameOf(reason)) << name;
            EXPECT_NE(error.cause().find(cause), std::string::npos) << name << ": " << error.cause();
            EXPECT_EQ(std::string(error.what()), "cannot store Trips/1/1/1/1: " + error.cause()) << name;
        }
    }
}

TEST(StoreError, passesOnWhatIsAStoreErrorAlready) {
    StoreError const inner(Reason::notFound, "read a", "it is missing");
    try {
        store::reporting({"store b", {}}, [&] { throw inner; });
        ADD_FAILURE() << "nothing was thrown";
    } catch (StoreError const& error) {
        EXPECT_STREQ(error.what(), "cannot read a: it is missing");
    }
}

}
}
