#include "tool/Command.h"
#include "tool/Projects.h"

#include <cubes/database/TPgConnection.h>

namespace cubes::tool {

namespace {

class Init : public Command {
public:
    Init() : Command("init", "Create a project") {}

    void declare(Arguments arguments) override {
        arguments.required("DIR", directory_, "Directory of the project, created when it does not exist");
        arguments.optional("--database", options_.database, "sqlite:PATH or postgresql://...; default sqlite:cubes.db")
            .calls("URL");
        arguments.optional("--storage", options_.storage, "How matrix files are stored: plain (default) or deflate")
            .oneOf({"plain", "deflate"})
            .calls("HOW");
        arguments
            .optional("--durability", options_.durability,
                "full (default): stored matrices survive a power failure; process: faster, but they may not")
            .oneOf({"full", "process"})
            .calls("HOW");
    }

    bool needsProject() const override { return false; }
    std::string task() const override { return "create a project in " + directory_; }

    void run(Surroundings const&, Output& output) override {
        auto const project = createProject(directory_, options_);
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
