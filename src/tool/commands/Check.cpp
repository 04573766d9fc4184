#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/Progress.h"
#include "tool/commands/Routes.h"

#include <algorithm>

namespace cubes::tool {

namespace {

Json orNone(std::string const& text) {
    return orNull(!text.empty(), text);
}

bool hasErrors(std::vector<Finding> const& findings) {
    return std::ranges::any_of(findings, [](Finding const& finding) { return finding.severity() == Severity::error; });
}

// Paths inside the project are shown without its directory.
std::string shownPath(std::string const& file, std::string const& root) {
    auto const inside = toPath(file).lexically_relative(toPath(root));
    return inside.empty() || *inside.begin() == ".." ? file : toText(inside);
}

std::string outcomeOf(Repair const& repair) {
    return repair.failure.empty() ? repair.done : "failed: " + repair.failure;
}

// What is wrong with the file of an entry of routes; empty when nothing is.
std::string faultOfRoutes(EntryInfo const& entry) {
    try {
        verifyRoutes(entry);
        return {};
    } catch (Failure const& error) {
        std::string const text = error.what();
        return text.starts_with(entry.file + ": ") ? text.substr(entry.file.size() + 2) : text;
    }
}

class Check : public Command {
public:
    Check() : Command("check", "Compare the entries with their files, and repair what is wrong") {}

    void declare(Arguments arguments) override {
        arguments.optional("WHAT", what_, "CUBE or ENTRY; default: the whole project");
        arguments.flag("--deep", deep_, "Also read every file and compare it with its checksum");
        arguments.flag("--repair", repair_, "Repair what was found; without --yes only say how");
        arguments.flag("--yes", yes_, "Repair without asking");
        arguments.flag("--drop-rows", dropRows_, "Also remove the rows of entries that have no file");
    }

    bool onlyReads() const override { return !(repair_ && yes_); }
    std::string task() const override { return what_.empty() ? "check the project" : "check " + what_; }

    void run(Surroundings const& surroundings, Output& output) override {
        if ((yes_ || dropRows_) && !repair_) throw UsageError("--yes and --drop-rows need --repair");
        Entries const entries(surroundings);
        auto const selection = selected(entries);
        auto const findings = found(entries, selection);
        if (findings.empty() && isEntry(what_)) entries.find(what_);
        if (repair_ && yes_) return repair(entries, selection, findings, output);
        show(entries, findings, {}, output);
        if (repair_ && !findings.empty()) printNote("nothing was changed; add --yes to repair");
        if (findings.empty()) printNote("nothing is wrong");
        if (hasErrors(findings)) output.exitWith(ExitCode::refused);
    }

private:
    EntrySelection selected(Entries const& entries) const {
        if (what_.empty()) return {};
        if (!isEntry(what_)) return {.cubeNumber = entries.cube(what_).number};
        auto const key = entries.key(what_);
        EntrySelection one{.cubeNumber = key.cube(),
            .purpose = key.purpose(),
            .mode = key.mode(),
            .time = key.time(),
            .user = key.user()};
        if (!key.isResult()) return one;
        one.result = key.result();
        one.iteration = key.iteration();
        return one;
    }

    std::vector<Finding> found(Entries const& entries, EntrySelection const& selection) const {
        Progress progress("checking");
        auto const reached = [&progress](std::size_t done, std::size_t total) {
            if (total > 0) progress.reached(done, total);
        };
        return entries.store().check(selection, {deep_, reached, faultOfRoutes});
    }

    void repair(Entries const& entries, EntrySelection const& selection, std::vector<Finding> const& findings,
        Output& output) const {
        auto const repairs = entries.store().repair(findings, {dropRows_});
        // What was done is known before the second check, which may take long or fail.
        Output done(output.form());
        show(entries, findings, repairs, done);
        repaired("the result cannot be printed", [&] { done.write(); });
        repaired("it cannot be checked again", [&] {
            if (hasErrors(found(entries, selection))) output.exitWith(ExitCode::refused);
        });
    }

    // An error from here on does not mean that nothing was changed.
    template <typename Work>
    static void repaired(char const* failure, Work const& work) {
        try {
            work();
        } catch (Interrupted const&) {
            throw Failure("the repair is done, but the check after it was interrupted");
        } catch (std::exception const& error) {
            throw Failure(std::string("the repair is done, but ") + failure + ": " + error.what());
        }
    }

    // `repairs`: those of the findings, or none.
    static void show(Entries const& entries, std::vector<Finding> const& findings, std::vector<Repair> const& repairs,
        Output& output) {
        std::vector<Column> columns = {{"severity", "severity"}, {"problem", "problem"}, {"entry", "entry"},
            {"file", ""}, {"", "file"}, {"detail", "detail"}, {"repair", "repair"}};
        if (!repairs.empty()) columns.push_back({"done", "done"});
        Table table(columns);
        for (std::size_t i = 0; i < findings.size(); ++i) {
            auto const& finding = findings[i];
            auto const shown = shownPath(finding.file, entries.project().root());
            std::vector<Json> row = {nameOf(finding.severity()), infoOf(finding.problem).name, orNone(finding.text),
                orNone(finding.file), orNone(shown), finding.detail, orNone(finding.repair)};
            if (!repairs.empty()) row.push_back(orNone(outcomeOf(repairs[i])));
            table.add(std::move(row));
        }
        output.show(table);
    }

    std::string what_;
    bool deep_ = false;
    bool repair_ = false;
    bool yes_ = false;
    bool dropRows_ = false;
};

}

std::unique_ptr<Command> makeCheck() {
    return std::make_unique<Check>();
}

}
