#pragma once

#include <string>

/// The texts that name a database: "sqlite:PATH" and "postgresql://...".
namespace cubes::database {

bool isSqliteUrl(std::string const& url);
bool isPostgresUrl(std::string const& url);
/// REQUIRES: isSqliteUrl(url).
std::string sqlitePath(std::string const& url);
std::string sqliteUrl(std::string const& path);

/// The URL fit to be shown and stored: without passwords, in the user part and among the
/// parameters. Errs on the side of removing too much.
std::string withoutPassword(std::string const& url);
/// Whether the user part holds characters that make it unclear where the password ends.
bool isAmbiguous(std::string const& url);

}
