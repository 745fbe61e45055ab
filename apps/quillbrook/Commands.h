// The subcommands of the quillbrook program. Each returns the process's exit code.
#pragma once

#include <string>
#include <vector>

int RunInfo(const std::string& path, bool json);
// `info --json --raw`: the stack as stored in its file, with the contents behind every head, in the
// shape that `build` takes back.
int RunInfoRaw(const std::string& path);
int RunValidate(const std::string& path);
// Writes the stack described by the JSON file at `jsonPath` to `outPath`. On any mistake nothing new
// is left at `outPath`.
int RunBuild(const std::string& jsonPath, const std::string& outPath);
// Opens FILE through the full open flow and saves it to `outPath` through the full writer.
int RunResave(const std::string& path, const std::string& outPath);
// Writes every card background and every graphic picture of FILE as PNG files, and every 'Snd '
// record as a WAV file, into `outDir`.
int RunExport(const std::string& path, const std::string& outDir);

// What `render` was asked for.
struct RenderOptions {
    std::string path;
    std::string output;         // a PNG file, or with --all / --frames a folder
    int card = 1;               // 1-based, in card order
    bool all = false;
    bool contactSheet = false;
    int depth = 0;              // 0: the stack's own
    std::string replay;         // EVENTS.json
    int settleMs = 3000;
    std::string framesDir;      // every presented frame
    std::string audio;          // with --replay: what was heard, as a WAV file
    int toCard = 0;             // with --transition: the card changed to
    int transition = 0;
    int speed = 8;
};
int RunRender(const RenderOptions& options);
// `render --replay`: the events of EVENTS.json on the headless virtual clock.
int RunReplay(const RenderOptions& options);

// What `play` was asked for.
struct PlayOptions {
    std::string path;
    int depth = 0;              // 0: the stack's own
    int scale = 1;              // window pixels per card pixel
    bool fullscreen = false;
    std::string record;         // EVENTS.json to write every input event to
    // For tests: once `exitAfterMs` have passed since the window showed and since the last key or
    // mouse button, the window's pixels go to `screenshot` and the player ends.
    std::string screenshot;
    int exitAfterMs = 0;
};
// The desktop player, in an SDL window.
int RunPlay(const PlayOptions& options);

// `logo`: runs the file, or the one line, and exits 1 after an uncaught error; with neither, reads
// lines from stdin ("?" prompts on a terminal, ">" inside TO).
// `allowFiles`: folders a script's files may be in besides the current folder and below it.
int RunLogo(const std::string& path, const std::string& line, const std::vector<std::string>& allowFiles);
