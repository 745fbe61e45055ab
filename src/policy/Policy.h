// The Policy: the one module that decides what a stack may do outside itself. Stacks come from web
// pages, so every file a stack names, every write it asks for, every extension module and every
// program it starts is judged here first. Callers hand in host paths and the facts behind them (the
// current stack, the installation folder, the user's config folder); the policy looks at the disk
// only to resolve links and see what exists, and shows nothing: a question to the user comes
// through a function the caller installs.
//
// Paths are judged after normalisation: made absolute, "." and ".." and doubled slashes taken out,
// links resolved as far as the path exists. So "../../etc/passwd" and a link out of a folder are
// judged by where they really lead, and a path holding a NUL is refused outright.
//
// Read: the files a stack refers to (pictures, sounds, movies, other stacks) come only from
//   - the stack's folder and its subfolders (not when that folder is the root: it would be all);
//   - the media folders QBArt, QBSounds, Movies and QBAnim (any case) of the folder above it,
//     except when that is the temporary folder, where anyone may make them and where a streamed
//     stack's private folder sits, so that beside a streamed stack there is nothing but itself;
//   - the installation's media folders of the same names;
//   - the stack's sandbox.
//   With no stack file (none open yet, or a new untitled one) only the installation's media.
// Write (create, replace, delete, rename): only inside the stack's sandbox, the stack file itself,
//   and the temporary file ("QBTMP000.TMP") its save goes through beside it.
//   The sandbox is <user config>/Sandboxes/<stack name>-<16 hex digits of its path's hash>. Not
//   beside the stack: its folder may be read-only media or shared by other stacks, and nothing a
//   stack writes should land among files the user keeps. The hash of the full path keeps two
//   stacks of one name apart while the same stack finds its files again on the next visit.
// Language files: the files a script opens, loads, saves or erases live in one folder and below
//   it, and nowhere else: the stack's sandbox in the player; on the command line the folder it was
//   started in, and any folder the user names besides. A relative name resolves in that folder;
//   one that leads out of it, by "..", as an absolute path or through a link, is refused.
// Load: extension modules by a bare name only (no separator, no drive, no ".."). A module compiled
//   into the player is always allowed; off the web, also a file of that name in the installation's
//   NBAs folder, else in the user config folder's. On the web there are no module files at all.
// Launch: never on the web. Headless, the request is recorded and nothing runs. On the desktop
//   only when the installed confirmation, which names the program, says yes; the answer (yes or
//   no) is kept for that stack and program until the player ends, so a stack cannot nag.
#pragma once

#include <string>
#include <vector>

enum class PolicyAct { Read, Write, Load, Launch };
// Where the player runs. A web build is always Web, whatever it is told.
enum class PolicyPlace { Headless, Desktop, Web };

// Asks the user whether the current stack may start `program`; true for yes.
using PolicyConfirmLaunch = bool (*)(const std::string& program, const std::string& stackPath);

// The facts the callers hand in, as host paths.
struct PolicyContext {
    std::string stackPath;      // the current stack's file; "" when there is none
    std::string installFolder;  // the program's folder, with its media and NBAs folders
    std::string configFolder;   // the user's config folder; "" when unknown (then no sandbox)
    PolicyPlace place = PolicyPlace::Headless;
};

struct PolicyLaunchAnswer {
    std::string stackPath;
    std::string program;
    bool allowed = false;
};

struct PolicyState {
    PolicyContext context;
    PolicyConfirmLaunch confirmLaunch = nullptr;       // none: the desktop refuses every launch
    std::vector<PolicyLaunchAnswer> launchAnswers;     // the user's answers, per stack and program
    std::vector<PolicyLaunchAnswer> launchesRecorded;  // headless requests, in order, never run
    std::vector<std::string> builtInModules;           // compiled into the player
    std::string languageFolder;                        // "" in the player: the sandbox
    std::vector<std::string> languageFoldersAllowed;   // further folders the user opened
};

PolicyState& GetPolicyState();
void ResetPolicyState();

void SetPolicyStack(const std::string& hostPath);
void SetPolicyFolders(const std::string& installFolder, const std::string& configFolder);
void SetPolicyPlace(PolicyPlace place);
void SetPolicyConfirmLaunch(PolicyConfirmLaunch confirm);
void RegisterBuiltInModule(const std::string& name);
// True in a web build, or when told the player runs on the web.
bool PolicyOnWeb();

bool PolicyAllowsRead(const std::string& hostPath);
bool PolicyAllowsWrite(const std::string& hostPath);
// `*hostPath` gets the module's file, or "" for one compiled into the player.
bool PolicyAllowsLoad(const std::string& moduleName, std::string* hostPath);
// `program` is the host path (or name) of the program or document to start.
bool PolicyAllowsLaunch(const std::string& program);
// Any act by its subject: a host path, a module name or a program.
bool PolicyAllows(PolicyAct act, const std::string& subject);

// The command line's folder for the language's files, and further folders it may reach.
void SetPolicyLanguageFolder(const std::string& hostFolder);
void AllowPolicyLanguageFolder(const std::string& hostFolder);
// The folder a script's relative file names resolve in.
std::string PolicyLanguageFolder();
// The host path of the file a script names (a relative name, an absolute one, or "C:\..."),
// normalised; "" when it lies outside what the language may reach.
std::string PolicyLanguageFilePath(const std::string& name);

// The current stack's sandbox folder (it may not exist yet); "" without a stack or config folder.
std::string PolicySandboxFolder();
