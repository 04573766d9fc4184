#include <cubes/project/Project.h>

#include "catalogue/Tables.h"
#include "host/database/DatabaseUrl.h"
#include "host/database/Transaction.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"
#include "host/platform/System.h"
#include "host/project/ProjectFile.h"
#include "host/project/ProjectLink.h"
#include "project/CreatedPaths.h"
#include "store/StoreTables.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/project/ProjectUtils.h>
#include <cubes/project/TRkGlobalSettings.h>
#include <cubes/project/TRkProjectException.h>
#include <cubes/store/EntryStore.h>

#include <algorithm>
#include <mutex>

namespace cubes {

namespace {

using project::CreatedPaths;
using project::ProjectFile;

std::string absoluteDirectory(std::string const& directory) {
    if (directory.empty()) throw TRkProjectException("a project needs a directory", directory);
    std::string path = platform::absolutePath(directory);
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

// A path of "cubes.toml" as the system accepts it.
std::string resolved(std::string const& root, std::string const& path) {
    return platform::absolutePath(platform::resolved(root, path));
}

std::string resolvedUrl(std::string const& root, std::string const& url) {
    return database::isSqliteUrl(url) ? database::sqliteUrl(resolved(root, database::sqlitePath(url))) : url;
}

// The proposed name, or that name with the first number under which no other project has tables.
std::string freeSchema(database::Session& session, std::string const& root) {
    std::string const proposal = ProjectUtils::toSqlSchemaName(AnsiString(root), {}).c_str();
    std::string schema = proposal;
    for (int number = 2; catalogue::belongsToProject(session, schema); ++number) {
        std::string const tail = "_" + std::to_string(number);
        schema = proposal.substr(0, 63 - tail.size()) + tail;
    }
    return schema;
}

// SQLite creates the file that it is asked to open, and an empty database in place of a lost one, or under a name with
// a typing error, would look like a project without cubes.
void requireDatabaseFile(std::string const& url, bool isOverridden) {
    if (!database::isSqliteUrl(url)) return;
    std::string const path = database::sqlitePath(url);
    if (!project::isPresent(path))
        throw TRkDatabaseException(std::string(isOverridden ? "the SQLite database that CUBES_DATABASE names"
                                                            : "the project's SQLite database") +
                                       ", '" + path + "', does not exist",
            "58P01");
}

}

struct Project::Parts {
    Parts(std::string directory, ProjectFile const& description, std::string const& url)
        : root(std::move(directory)), connection(url),
          settings(TRkFString::Directory(resolved(root, description.matrixDirectory)),
              TRkFString::Directory(resolved(root, description.workingDirectory))),
          store(std::make_unique<store::StoreTables>(connection, settings, link.schema)) {
        dictionary.SetConnection(&connection);
        settings.Set("RkLib.DataDictionary", &dictionary);
        settings.Set(project::ProjectLink::key, &link);
        link.connection = &connection;
        setMatrixStorage(settings.MatrixDirectory().str(), description.storage);
        setMatrixStorage(settings.WorkingDirectory().str(), description.storage);
    }
    ~Parts();

    void makeCurrent();

    std::string root;
    project::ProjectLink link;
    Pgaccess::TPgConnection connection;
    TRkDBDataDictionary dictionary;
    TRkGlobalSettings settings;
    EntryStore store;

    // The open projects of all threads; the last one made current is at the end.
    static std::mutex liveMutex;
    static std::vector<Parts*> live;
};

std::mutex Project::Parts::liveMutex;
std::vector<Project::Parts*> Project::Parts::live;

Project::Parts::~Parts() {
    std::lock_guard const guard(liveMutex);
    std::erase(live, this);
    auto& manager = getConnectionManagerInstance();
    if (manager.CurrentConnection() == &connection)
        manager.SetCurrentConnection(live.empty() ? nullptr : &live.back()->connection);
}

void Project::Parts::makeCurrent() {
    std::lock_guard const guard(liveMutex);
    std::erase(live, this);
    live.push_back(this);
    getConnectionManagerInstance().SetCurrentConnection(&connection);
}

Project Project::create(std::string const& directory, ProjectOptions const& options) {
    std::string const root = absoluteDirectory(directory);
    if (project::isPresent(project::projectFilePath(root)))
        throw TRkProjectException("'" + root + "' already is a project", root);
    ProjectFile file = project::projectFileFor(options, root);
    if (options.database.empty()) file.database = platform::environment("CUBES_DATABASE").value_or(file.database);

    CreatedPaths created;
    created.makeDirectory(root);
    created.makeDirectory(resolved(root, file.matrixDirectory));
    created.makeDirectory(resolved(root, file.workingDirectory));
    std::string const url = resolvedUrl(root, file.database);
    if (database::isSqliteUrl(url)) created.expectFile(database::sqlitePath(url));

    auto parts = std::make_unique<Parts>(root, file, url);
    auto& session = parts->connection.Backend();
    database::Transaction transaction(session, session.dialect().lockDefinitions());
    parts->link.schema = file.schema = freeSchema(session, root);
    catalogue::createMissingTables(session, file.schema);
    created.expectFile(project::projectFilePath(root));
    project::writeProjectFile(file, root);
    transaction.commit();
    created.keep();
    parts->makeCurrent();
    return Project(std::move(parts));
}

Project Project::open(std::string const& directory) {
    std::string const root = absoluteDirectory(directory);
    if (!project::isPresent(project::projectFilePath(root)))
        throw TRkProjectException("'" + root + "' is not a project: it has no \"cubes.toml\"", root);
    ProjectFile const file = project::readProjectFile(root);
    auto const otherDatabase = platform::environment("CUBES_DATABASE");
    std::string const url = resolvedUrl(root, otherDatabase.value_or(file.database));
    requireDatabaseFile(url, otherDatabase.has_value());

    auto parts = std::make_unique<Parts>(root, file, url);
    parts->link.schema =
        file.schema.empty() ? ProjectUtils::toSqlSchemaName(AnsiString(root), {}).c_str() : file.schema;
    catalogue::createMissingTables(parts->connection.Backend(), parts->link.schema);
    parts->makeCurrent();
    return Project(std::move(parts));
}

Project::Project(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

Project::Project(Project&&) noexcept = default;
Project& Project::operator=(Project&&) noexcept = default;
Project::~Project() = default;

TRkGlobalSettings* Project::settings() const noexcept {
    return &parts_->settings;
}

Pgaccess::TPgConnection* Project::connection() const noexcept {
    return &parts_->connection;
}

std::string const& Project::root() const noexcept {
    return parts_->root;
}

std::string const& Project::schema() const noexcept {
    return parts_->link.schema;
}

EntryStore& Project::store() const noexcept {
    return parts_->store;
}

void Project::makeCurrent() {
    parts_->makeCurrent();
}

}
