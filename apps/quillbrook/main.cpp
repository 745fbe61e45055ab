#include <CLI/CLI.hpp>

#include "Commands.h"
#include "memory/MemRef.h"
#include "stack/PathSlot.h"

int main(int argc, char** argv) {
    CLI::App app{"Quillbrook: a player for multimedia stacks (.stk)"};
    app.require_subcommand(1);

    std::string path;
    std::string output;
    bool json = false;
    bool raw = false;
    CLI::App* info = app.add_subcommand("info", "Show a stack's header, cards, items and records");
    info->add_option("FILE", path, "the stack")->required();
    CLI::Option* jsonFlag = info->add_flag("--json", json, "one JSON object, text in UTF-8");
    info->add_flag("--raw", raw, "with --json: the file's stored bytes behind every head, as hex, for build")
        ->needs(jsonFlag);

    CLI::App* validate = app.add_subcommand("validate", "Check that a stack opens cleanly");
    validate->add_option("FILE", path, "the stack")->required();

    CLI::App* build = app.add_subcommand("build", "Write a stack from its JSON description (the shape info --json prints)");
    build->add_option("STACK.json", path, "the description")->required();
    build->add_option("-o,--output", output, "the stack file to write")->required();

    CLI::App* resave = app.add_subcommand("resave", "Open a stack through the full open flow and save it again");
    resave->add_option("FILE", path, "the stack")->required();
    resave->add_option("-o,--output", output, "where to save it")->required();

    CLI::App* exportCommand = app.add_subcommand("export", "Write every card background and graphic picture as PNG");
    exportCommand->add_option("FILE", path, "the stack")->required();
    exportCommand->add_option("-o,--output", output, "the folder to write into")->required();

    CLI11_PARSE(app, argc, argv);
    if (!InitMemRefs() || !InitPathSlots()) return 2;
    if (info->parsed()) return raw ? RunInfoRaw(path) : RunInfo(path, json);
    if (validate->parsed()) return RunValidate(path);
    if (build->parsed()) return RunBuild(path, output);
    if (resave->parsed()) return RunResave(path, output);
    if (exportCommand->parsed()) return RunExport(path, output);
    return 2;
}
