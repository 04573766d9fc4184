#include "host/database/DatabaseUrl.h"

#include <libpq-fe.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

namespace cubes::database {

namespace {

constexpr std::string_view sqliteScheme = "sqlite:";

struct FreeOptions {
    void operator()(PQconninfoOption* options) const noexcept { PQconninfoFree(options); }
};
using Options = std::unique_ptr<PQconninfoOption, FreeOptions>;

// What libpq reads in a text, in all its spellings; null when it reads nothing.
Options optionsIn(std::string const& url) {
    return Options(PQconninfoParse(url.c_str(), nullptr));
}

template <typename Visit>
void forEachGiven(Options const& options, Visit const& visit) {
    for (auto const* option = options.get(); option->keyword; ++option)
        if (option->val) visit(*option);
}

// libpq marks what is not to be shown.
bool isSecret(PQconninfoOption const& option) {
    return option.dispchar[0] == '*';
}

// A password with a "/" or "@" in it, that should have been written with "%": libpq takes a part of it for the host or
// for the database.
bool hasBarePassword(std::string const& url) {
    auto rest = std::string_view(url).substr(url.find("://") + 3);
    auto const end = rest.find_first_of("@/");
    if (end != std::string_view::npos && rest[end] == '@') rest.remove_prefix(end + 1);
    return rest.substr(0, rest.find('?')).find('@') != std::string_view::npos;
}

// "postgresql://user:password" without a host names a port that is a password.
bool hasPorts(Options const& options) {
    bool areNumbers = true;
    forEachGiven(options, [&](PQconninfoOption const& option) {
        if (std::string_view(option.keyword) == "port")
            areNumbers = std::string_view(option.val).find_first_not_of("0123456789,") == std::string_view::npos;
    });
    return areNumbers;
}

std::string escaped(std::string_view text) {
    constexpr std::string_view plain = "-._~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        bool const isLetterOrDigit = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (isLetterOrDigit || plain.find(c) != std::string_view::npos)
            result += c;
        else
            result.append({'%', digits[byte / 16], digits[byte % 16]});
    }
    return result;
}

// The values by their keywords; one that is asked for is taken out.
using Values = std::map<std::string, std::string>;

std::string taken(Values& values, char const* keyword) {
    auto const node = values.extract(keyword);
    return node.empty() ? std::string() : escaped(node.mapped());
}

// Several hosts, sockets and IPv6 addresses are written as parameters.
std::string server(Values& values) {
    auto const host = values.find("host");
    bool const isName = host != values.end() && host->second.find_first_of(",/:") == std::string::npos;
    if (!isName) return {};
    auto const name = taken(values, "host");
    auto const port = taken(values, "port");
    return name + (port.empty() ? "" : ":" + port);
}

std::string urlOf(Values values) {
    auto user = taken(values, "user");
    if (!user.empty()) user += '@';
    auto const place = server(values);
    std::string url = "postgresql://" + user + place + "/" + taken(values, "dbname");
    char separator = '?';
    for (auto const& [keyword, value] : values) {
        url += separator + keyword + "=" + escaped(value);
        separator = '&';
    }
    return url;
}

}

bool isSqliteUrl(std::string const& url) {
    return url.starts_with(sqliteScheme) && url.size() > sqliteScheme.size();
}

bool isPostgresUrl(std::string const& url) {
    return url.starts_with("postgresql://") || url.starts_with("postgres://");
}

std::string sqlitePath(std::string const& url) {
    return url.substr(sqliteScheme.size());
}

std::string sqliteUrl(std::string const& path) {
    return std::string(sqliteScheme) + path;
}

bool isReadable(std::string const& url) {
    auto const options = optionsIn(url);
    return options && hasPorts(options) && !hasBarePassword(url);
}

std::string withoutPassword(std::string const& url) {
    if (isSqliteUrl(url)) return url;
    if (!isPostgresUrl(url) || !isReadable(url)) return {};
    Values shown;
    bool hasSecret = false;
    forEachGiven(optionsIn(url), [&](PQconninfoOption const& option) {
        if (isSecret(option))
            hasSecret = true;
        else
            shown.emplace(option.keyword, option.val);
    });
    return hasSecret ? urlOf(std::move(shown)) : url;
}

}
