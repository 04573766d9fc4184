#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Text.h"
#include "tool/commands/Routes.h"

#include <fmt/format.h>

#include <set>

namespace cubes::tool {

namespace {

class RoutesShow : public RoutesCommand {
public:
    RoutesShow() : RoutesCommand("routes show", "Print the size of a route set, or some of its routes") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry, of routes or routedata");
        auto const pair = arguments.optional("--od", pair_, 2, "Print the routes of an OD pair").calls("ZONE");
        arguments.optional("--link", link_, "Print the routes over a link").calls("LINK").without(pair);
    }

    bool onlyReads() const override { return true; }
    std::string task() const override { return "show " + entry_; }

    void run(Surroundings const& surroundings, Output& output) override {
        bool const picks = !pair_.empty() || !link_.empty();
        if (picks)
            requireRouteSet(entry_, surroundings);
        else
            requireRoutes(entry_, surroundings);
        auto const entry = findRoutes(entry_, Entries(surroundings));
        if (!isRouteSet(entry_)) return showData(entry, output);
        RouteSetFile const set(entry.file);
        if (picks)
            showRoutes(set, picked(set), output);
        else
            showSet(entry, set, output);
    }

private:
    std::vector<std::size_t> picked(RouteSetFile const& set) const {
        if (!pair_.empty()) return set.ofPair(parseZone(pair_[0]), parseZone(pair_[1]));
        return set.overLink(parseLink(link_));
    }

    static void showSet(EntryInfo const& entry, RouteSetFile const& set, Output& output) {
        std::set<std::pair<std::int32_t, std::int32_t>> pairs;
        double shares = 0;
        for (std::size_t i = 0; i < set.size(); ++i) {
            auto const one = set.route(i);
            pairs.emplace(one.origin, one.destination);
            shares += static_cast<double>(one.share);
        }
        Record record;
        record.add("entry", "entry", entry.text);
        record.add("file", "file", entry.file);
        record.add("routes", "routes", set.size());
        record.add("links", "links", set.linkCount());
        record.add("pairs", "OD pairs", pairs.size());
        record.add("shares", "sum of shares", shares);
        output.show(record);
    }

    static void showRoutes(RouteSetFile const& set, std::vector<std::size_t> const& numbers, Output& output) {
        Table table({{"route", "route"}, {"origin", "origin"}, {"destination", "destination"}, {"share", "share"},
            {"links", ""}, {"", "links"}});
        for (auto const number : numbers) {
            auto const one = set.route(number);
            std::vector<std::uint32_t> const links(one.links.begin(), one.links.end());
            table.add(
                {number, one.origin, one.destination, one.share, links, fmt::format("{}", fmt::join(links, " "))});
        }
        output.show(table);
        if (numbers.empty()) printNote("there are no such routes");
    }

    static void showData(EntryInfo const& entry, Output& output) {
        auto const fields = readRouteData(entry.file);
        Record record;
        record.add("entry", "entry", entry.text);
        record.add("file", "file", entry.file);
        record.add("routes", "routes", fields.empty() ? 0 : fields.front().values.size());
        record.add("fields", "fields", fields.size());
        output.show(record);
    }

    std::string entry_;
    std::vector<std::string> pair_;
    std::string link_;
};

}

std::unique_ptr<Command> makeRoutesShow() {
    return std::make_unique<RoutesShow>();
}

}
