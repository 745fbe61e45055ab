#include <CLI/CLI.hpp>

#include "Commands.h"
#include "memory/MemRef.h"
#include "stack/PathSlot.h"

int main(int argc, char** argv) {
    CLI::App app{"Quillbrook: a player for multimedia stacks (.stk)"};
    app.require_subcommand(1);

    std::string path;
    bool json = false;
    CLI::App* info = app.add_subcommand("info", "Show a stack's header, cards, items and records");
    info->add_option("FILE", path, "the stack")->required();
    info->add_flag("--json", json, "one JSON object, text in UTF-8");

    CLI::App* validate = app.add_subcommand("validate", "Check that a stack opens cleanly");
    validate->add_option("FILE", path, "the stack")->required();

    CLI11_PARSE(app, argc, argv);
    if (!InitMemRefs() || !InitPathSlots()) return 2;
    if (info->parsed()) return RunInfo(path, json);
    if (validate->parsed()) return RunValidate(path);
    return 2;
}
