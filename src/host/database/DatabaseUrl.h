#pragma once

#include <string>

/// The texts that name a database: "sqlite:PATH" and "postgresql://...".
namespace cubes::database {

bool isSqliteUrl(std::string const& url);
bool isPostgresUrl(std::string const& url);
/// REQUIRES: isSqliteUrl(url).
std::string sqlitePath(std::string const& url);
std::string sqliteUrl(std::string const& path);

/// Whether libpq can read a PostgreSQL URL, and its password is not taken for a host or a port. REQUIRES:
/// isPostgresUrl(url).
bool isReadable(std::string const& url);
/// The URL fit to be shown and stored: without the passwords that libpq reads in it, in any spelling. Empty for a text
/// that is not readable: nobody knows where its password is.
std::string withoutPassword(std::string const& url);

}
