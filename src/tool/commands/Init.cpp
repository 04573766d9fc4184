#include "tool/ProjectFinder.h"
#include "tool/commands/Commands.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/project/Project.h>

namespace cubes::tool {

namespace {

class Init : public Command {
public:
    Init() : Command("init", "Make a project") {}

    void declare(Arguments arguments) override {
        arguments.required("DIR", directory_, "Directory of the project, made when it is not there");
        arguments.optional("--database", options_.database, "sqlite:PATH or postgresql://...; default sqlite:cubes.db")
            .calls("URL");
        arguments.optional("--storage", options_.storage, "How matrix files are stored: plain (default) or deflate")
            .oneOf({"plain", "deflate"})
            .calls("HOW");
        arguments
            .optional("--durability", options_.durability,
                "full (default): a stored matrix survives a power failure; process: it need not, and is stored faster")
            .oneOf({"full", "process"})
            .calls("HOW");
    }

    bool needsProject() const override { return false; }
    std::string task() const override { return "make a project in " + directory_; }

    void run(Surroundings const&, Output& output) override {
        refuseProject(directory_);
        auto const project = Project::create(directory_, options_);
        Record made;
        made.add("project", "project", project.root());
        made.add("database", "database", project.connection()->Url());
        output.show(made);
    }

private:
    std::string directory_;
    ProjectOptions options_;
};

}

std::unique_ptr<Command> makeInit() {
    return std::make_unique<Init>();
}

}
