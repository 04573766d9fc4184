#include "host/database/DatabaseUrl.h"

#include <string_view>
#include <vector>

namespace cubes::database {

namespace {

constexpr std::string_view sqliteScheme = "sqlite:";

struct Span {
    std::size_t start;
    std::size_t length;
};

std::size_t schemeEnd(std::string const& url) {
    std::size_t const end = url.find("://");
    return end == std::string::npos ? std::string::npos : end + 3;
}

// ":password" before the last "@" that stands in front of the parameters. A password with a "/"
// or "@" in it should have been written with "%", but must not show all the same.
void addUserPassword(std::string const& url, std::vector<Span>& spans) {
    std::size_t const start = schemeEnd(url);
    if (start == std::string::npos) return;
    std::size_t const end = url.rfind('@', url.find('?'));
    if (end == std::string::npos || end < start) return;
    std::size_t const colon = url.find(':', start);
    if (colon < end) spans.push_back({colon, end - colon});
}

// "password=..." and "sslpassword=..." among the parameters, with the separator behind it.
void addParameters(std::string const& url, std::vector<Span>& spans) {
    for (std::size_t at = url.find('?'); at != std::string::npos && at + 1 < url.size();) {
        std::size_t const end = url.find('&', at + 1);
        std::size_t const stop = end == std::string::npos ? url.size() : end + 1;
        std::string_view const parameter = std::string_view(url).substr(at + 1, stop - at - 1);
        if (parameter.starts_with("password=") || parameter.starts_with("sslpassword="))
            spans.push_back({at + 1, stop - at - 1});
        at = end;
    }
}

std::vector<Span> passwords(std::string const& url) {
    std::vector<Span> spans;
    if (isSqliteUrl(url)) return spans;
    addUserPassword(url, spans);
    addParameters(url, spans);
    return spans;
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

bool isAmbiguous(std::string const& url) {
    std::vector<Span> spans;
    addUserPassword(url, spans);
    return !spans.empty() && url.substr(spans[0].start, spans[0].length).find_first_of("/@") != std::string::npos;
}

std::string withoutPassword(std::string const& url) {
    std::string text = url;
    auto const spans = passwords(url);
    for (auto span = spans.rbegin(); span != spans.rend(); ++span) text.erase(span->start, span->length);
    while (!spans.empty() && !text.empty() && (text.back() == '&' || text.back() == '?')) text.pop_back();
    return text;
}

}
