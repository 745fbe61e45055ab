#include <CLI/CLI.hpp>

#include "Commands.h"
#include "memory/MemRef.h"
#include "platform/headless/HeadlessHost.h"
#include "platform/sdl/SdlHost.h"
#include "stack/PathSlot.h"

int main(int argc, char** argv) {
    CLI::App app{"Quillbrook: a player for multimedia stacks (.stk)"};
    app.require_subcommand(1);
    app.set_version_flag("--version", "quillbrook " QB_VERSION, "show the version and exit");

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

    CLI::App* exportCommand = app.add_subcommand("export", "Write every card background and graphic picture as PNG, every sound as WAV");
    exportCommand->add_option("FILE", path, "the stack")->required();
    exportCommand->add_option("-o,--output", output, "the folder to write into")->required();

    RenderOptions render;
    CLI::App* renderCommand = app.add_subcommand("render", "Draw cards as PNG, headless");
    renderCommand->add_option("FILE", render.path, "the stack")->required();
    renderCommand->add_option("-o,--output", render.output, "the PNG to write (a folder with --all)")->required();
    renderCommand->add_option("--card", render.card, "the card, counted from 1 in card order (with --replay: the card the session starts on)");
    renderCommand->add_flag("--all", render.all, "every card, as NNN-name.png");
    renderCommand->add_flag("--contact-sheet", render.contactSheet, "with --all: one more PNG of every card");
    renderCommand->add_option("--depth", render.depth, "the display depth to emulate: 8, 16 or 32")
        ->check(CLI::IsMember({8, 16, 32}));
    CLI::Option* replay =
        renderCommand->add_option("--replay", render.replay, "play EVENTS.json and write the frame shown after it");
    renderCommand->add_option("--settle", render.settleMs, "with --replay: milliseconds after the last event");
    renderCommand->add_option("--audio", render.audio, "with --replay: write what was heard to OUT.wav")->needs(replay);
    renderCommand->add_option("--frames", render.framesDir, "write every presented frame into this folder");
    renderCommand->add_option("--to", render.toCard, "change from --card to this card");
    renderCommand->add_option("--transition", render.transition, "with --to: the effect, 1 to 28");
    renderCommand->add_option("--speed", render.speed, "with --to: 8, 16 or 32");

    PlayOptions play;
    CLI::App* playCommand = app.add_subcommand("play", "Play a stack in a window");
    playCommand->add_option("FILE", play.path, "the stack")->required();
    playCommand->add_option("--depth", play.depth, "the display depth to emulate: 8, 16 or 32")
        ->check(CLI::IsMember({8, 16, 32}));
    playCommand->add_option("--scale", play.scale, "window pixels per card pixel")
        ->check(CLI::Range(1, kMaxSdlScale));
    playCommand->add_flag("--fullscreen", play.fullscreen, "start fullscreen (F11 or Alt+Return switches)");
    playCommand->add_option("--record", play.record, "write every input event to EVENTS.json, for render --replay");
    // For tests, and so not listed in the help. --exit-after counts from the window showing and again
    // from every key or mouse button, and the screenshot is taken as the player ends.
    playCommand->add_option("--screenshot", play.screenshot)->group("");
    playCommand->add_option("--exit-after", play.exitAfterMs)->group("")->check(CLI::PositiveNumber);

    std::string logoLine;
    CLI::App* logoCommand = app.add_subcommand("logo", "Run QuillLogo: a file, one line (-e), or lines typed at the prompt");
    logoCommand->add_option("FILE", path, "the program, run line by line");
    logoCommand->add_option("-e", logoLine, "one line to run");
    std::vector<std::string> allowFiles;
    logoCommand->add_option("--allow-files", allowFiles, "a folder the script's files may be in, besides the current one");

    CLI11_PARSE(app, argc, argv);
    if (!InitMemRefs() || !InitPathSlots()) return 2;
    // Every command runs headless; play puts its window in place of this host. The command line
    // runs on a real terminal, so the date and the terminal are the machine's.
    Host host = HeadlessHost();
    host.WallClock = MachineWallClock;
    host.IsTerminal = MachineIsTerminal;
    SetHost(host);
    if (info->parsed()) return raw ? RunInfoRaw(path) : RunInfo(path, json);
    if (validate->parsed()) return RunValidate(path);
    if (build->parsed()) return RunBuild(path, output);
    if (resave->parsed()) return RunResave(path, output);
    if (exportCommand->parsed()) return RunExport(path, output);
    if (renderCommand->parsed()) return render.replay.empty() ? RunRender(render) : RunReplay(render);
    if (playCommand->parsed()) return RunPlay(play);
    if (logoCommand->parsed()) return RunLogo(path, logoLine, allowFiles);
    return 2;
}
