// The plug-in module as a browser meets it: loaded with dlopen, given a browser's function table and
// memory, and driven through its entry points in a browser's order. The module carries its own copy
// of the player, so what the player shows is asked of the module through its probe.
#ifdef QB_NPAPI_MODULE

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "PluginProbe.h"
#include "host/Plugin.h"
#include "host/PluginApi.h"
#include "support/StackBytes.h"

namespace {

namespace fs = std::filesystem;

const std::string kFixtures = QB_FIXTURES_DIR;
char kMimeType[] = "application/qbrk";

// The browser keeps one module per process, as the player keeps its state until the process ends.
struct PluginModule {
    void* handle = dlopen(QB_NPAPI_MODULE, RTLD_NOW | RTLD_LOCAL);
    template <typename Proc>
    Proc Get(const char* name) const { return handle ? reinterpret_cast<Proc>(dlsym(handle, name)) : nullptr; }
    // The entry points as this build declares them; the module's own are looked up by name.
    decltype(&NP_GetEntryPoints) getEntryPoints = Get<decltype(&NP_GetEntryPoints)>("NP_GetEntryPoints");
    decltype(&NP_Initialize) initialize = Get<decltype(&NP_Initialize)>("NP_Initialize");
    decltype(&NP_Shutdown) shutdown = Get<decltype(&NP_Shutdown)>("NP_Shutdown");
    decltype(&NP_GetMIMEDescription) getMimeDescription = Get<decltype(&NP_GetMIMEDescription)>("NP_GetMIMEDescription");
    decltype(&NP_GetValue) getValue = Get<decltype(&NP_GetValue)>("NP_GetValue");
    QB_TestStateProc state = Get<QB_TestStateProc>("QB_TestState");
    QB_TestClearAlertsProc clearAlerts = Get<QB_TestClearAlertsProc>("QB_TestClearAlerts");
    QB_TestSetStreamFaultProc setStreamFault = Get<QB_TestSetStreamFaultProc>("QB_TestSetStreamFault");
};

const PluginModule& TheModule() { static const PluginModule module; return module; }

struct BrowserLog {
    std::vector<uint32_t> allocations;  // sizes asked for
    std::set<void*> live;
    bool refuse = false;
    int strayFrees = 0;  // of memory the browser never gave
};
BrowserLog gBrowser;

void* BrowserMemAlloc(uint32_t size) {
    gBrowser.allocations.push_back(size);
    if (gBrowser.refuse) return nullptr;
    void* p = std::malloc(std::max<uint32_t>(size, 1));
    gBrowser.live.insert(p);
    return p;
}

void BrowserMemFree(void* p) {
    if (gBrowser.live.erase(p) == 0) return void(++gBrowser.strayFrees);
    std::free(p);
}

// Only memory is offered: the instance code calls nothing else, and a call through a null slot would crash.
NPNetscapeFuncs BrowserTable() {
    NPNetscapeFuncs t{};
    t.size = sizeof(NPNetscapeFuncs);
    t.version = 0x0013;
    t.memalloc = BrowserMemAlloc;
    t.memfree = BrowserMemFree;
    return t;
}

// The smallest size fields at this platform's layout, worked out from the tables themselves.
constexpr uint16_t kPluginMin = offsetof(NPPluginFuncs, event) + sizeof(NPP_HandleEventProcPtr);
constexpr uint16_t kBrowserMin = offsetof(NPNetscapeFuncs, reloadplugins) + sizeof(NPN_ReloadPluginsProcPtr);

std::vector<int> Alerts(const QbPluginProbe& p) { return std::vector<int>(p.alertIds, p.alertIds + p.alertCount); }

class PluginHarness : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(TheModule().handle, nullptr) << dlerror();
            gBrowser = BrowserLog{};
        // The module's temporary folder, to see what it leaves there.
        if (const char* old = std::getenv("TMPDIR")) oldTmp_ = old;
        tmp_ = fs::temp_directory_path() / ("qb-plugin-harness-" + std::to_string(::getpid()));
        fs::create_directories(tmp_);
        ::setenv("TMPDIR", tmp_.c_str(), 1);
        TheModule().clearAlerts();
        browser_ = BrowserTable();
        plugin_.size = sizeof(NPPluginFuncs);
        ASSERT_EQ(TheModule().getEntryPoints(&plugin_), NPERR_NO_ERROR);
        ASSERT_EQ(TheModule().initialize(&browser_), NPERR_NO_ERROR);
    }

    void TearDown() override {
        for (const auto& instance : instances_)
            if (instance->pdata) { EXPECT_EQ(plugin_.destroy(instance.get(), nullptr), NPERR_NO_ERROR); }
        EXPECT_EQ(TheModule().shutdown(), NPERR_NO_ERROR);
        TheModule().setStreamFault(kQbNoFault);
        EXPECT_TRUE(gBrowser.live.empty()) << "instance data left with the browser";
        EXPECT_EQ(gBrowser.strayFrees, 0);
        if (oldTmp_.empty()) ::unsetenv("TMPDIR");
        else ::setenv("TMPDIR", oldTmp_.c_str(), 1);
        fs::remove_all(tmp_);
    }

    static QbPluginProbe Probe() {
        QbPluginProbe p{};
        TheModule().state(&p);
        return p;
    }

    NPP NewInstance() {
        instances_.push_back(std::make_unique<NPP_t>());
        NPP instance = instances_.back().get();
        EXPECT_EQ(plugin_.newp(kMimeType, instance, NP_EMBED, 0, nullptr, nullptr, nullptr), NPERR_NO_ERROR);
        return instance;
    }

    NPError SetWindow(NPP instance, void* handle) {
        NPWindow window{handle, 0, 0, 640, 480, {}, NPWindowTypeWindow};
        return plugin_.setwindow(instance, &window);
    }

    // A browser's delivery: ask how much the plug-in takes, offer at most that, in the chunk sizes
    // given (repeated until the bytes are all out), then end the stream.
    void Stream(NPP instance, const Bytes& bytes, const std::vector<size_t>& chunks, NPReason reason = NPRES_DONE) {
        NPStream stream{};
        stream.url = "http://example.test/stack.stk";
        stream.end = static_cast<uint32_t>(bytes.size());
        uint16_t stype = NP_NORMAL;
        ASSERT_EQ(plugin_.newstream(instance, kMimeType, &stream, false, &stype), NPERR_NO_ERROR);
        EXPECT_EQ(stype, NP_NORMAL);
        for (size_t i = 0, offset = 0; offset < bytes.size(); ++i) {
            const int32_t ready = plugin_.writeready(instance, &stream);
            ASSERT_EQ(ready, 0x0FFFFFFF);
            const auto n = static_cast<int32_t>(std::min({chunks[i % chunks.size()], bytes.size() - offset, size_t(ready)}));
            Bytes chunk(bytes.begin() + static_cast<ptrdiff_t>(offset), bytes.begin() + static_cast<ptrdiff_t>(offset) + n);
            ASSERT_EQ(plugin_.write(instance, &stream, static_cast<int32_t>(offset), n, chunk.data()), n);
            offset += static_cast<size_t>(n);
        }
        EXPECT_EQ(plugin_.destroystream(instance, &stream, reason), NPERR_NO_ERROR);
    }


    NPNetscapeFuncs browser_{};
    NPPluginFuncs plugin_{};
    std::vector<std::unique_ptr<NPP_t>> instances_;
    fs::path tmp_;
    std::string oldTmp_;
    int windowA_ = 0, windowB_ = 0;  // their addresses are the host's window handles
};

TEST_F(PluginHarness, EntryPointsCheckTheTableSize) {
    NPPluginFuncs table{};
    std::memset(&table, 0xA5, sizeof(table));
    table.size = kPluginMin - 1;
    ASSERT_EQ(TheModule().getEntryPoints(&table), 3);
    EXPECT_EQ(table.version, 0xA5A5) << "a refused table is left alone";
    table.size = kPluginMin;
    ASSERT_EQ(TheModule().getEntryPoints(&table), 0);
    // The slots the other tests call are filled; NPP_HandleEvent is not in the table.
    EXPECT_EQ(table.version, 6);
    EXPECT_TRUE(table.asfile && !table.event);
    EXPECT_EQ(TheModule().getEntryPoints(nullptr), 3);
}

TEST_F(PluginHarness, InitializeChecksTheMajorVersionThenTheSize) {
    struct Case { uint16_t size, version; NPError expected; };
    const Case cases[] = {{kBrowserMin - 1, 0x0013, 3}, {kBrowserMin, 0x0013, 0}, {kBrowserMin - 1, 0x0100, 8}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "size " << c.size << " version " << c.version);
        NPNetscapeFuncs table = BrowserTable();
        table.size = c.size;
        table.version = c.version;
        EXPECT_EQ(TheModule().initialize(&table), c.expected);
        EXPECT_EQ(Probe().browserFunctions, &table) << "the table is kept whatever the result";
    }
    ASSERT_EQ(TheModule().initialize(&browser_), 0);
    EXPECT_EQ(TheModule().initialize(nullptr), 3);
    EXPECT_EQ(Probe().browserFunctions, &browser_) << "a null table is not stored";
}

TEST_F(PluginHarness, ModuleDescribesItself) {
    EXPECT_STREQ(TheModule().getMimeDescription(), "application/qbrk:stk:Quillbrook");
    const char* text = nullptr;
    EXPECT_EQ((std::vector<NPError>{TheModule().getValue(nullptr, static_cast<NPPVariable>(99), &text),
                                    TheModule().getValue(nullptr, NPPVpluginNameString, nullptr),
                                    TheModule().getValue(nullptr, NPPVpluginNameString, &text)}),
              (std::vector<NPError>{NPERR_INVALID_PARAM, NPERR_INVALID_PARAM, 0}));
    EXPECT_STREQ(text, "Quillbrook");
}

TEST_F(PluginHarness, NewAsksTheBrowserForInstanceDataAndInstanceFunctionsRefuseBadArguments) {
    NPP instance = NewInstance();
    // A pointer-sized window and a 16-bit mode, packed: six bytes on a 32-bit layout.
    EXPECT_EQ(gBrowser.allocations, std::vector<uint32_t>{sizeof(void*) + 2});
    NPP_t noData{};
    NPWindow window{};
    uint16_t stype = NP_NORMAL;
    // No instance; no instance data (which destroy takes as done); no window record.
    EXPECT_EQ((std::vector<NPError>{plugin_.newp(kMimeType, nullptr, NP_EMBED, 0, nullptr, nullptr, nullptr),
                                    plugin_.destroy(nullptr, nullptr), plugin_.setwindow(nullptr, &window),
                                    plugin_.newstream(nullptr, kMimeType, nullptr, false, &stype),
                                    plugin_.destroystream(nullptr, nullptr, NPRES_DONE), plugin_.setwindow(&noData, &window),
                                    plugin_.destroy(&noData, nullptr)}),
              (std::vector<NPError>{2, 2, 2, 2, 2, 1, 0}));
    EXPECT_EQ(plugin_.destroy(instance, nullptr), 0);
    EXPECT_EQ(instance->pdata, nullptr);
    gBrowser.refuse = true;
    NPP_t refused{};
    EXPECT_EQ(plugin_.newp(kMimeType, &refused, NP_FULL, 0, nullptr, nullptr, nullptr), NPERR_OUT_OF_MEMORY_ERROR);
    EXPECT_EQ(refused.pdata, nullptr);
}

TEST_F(PluginHarness, FirstWindowStartsThePlayerAndAStreamedFixtureOpensAtItsFirstCard) {
    const Bytes fixture = ReadWholeFile(kFixtures + "/sample-cards.stk");
    NPP instance = NewInstance();
    ASSERT_EQ(SetWindow(instance, &windowA_), 0);
    QbPluginProbe p = Probe();
    EXPECT_EQ(p.timerPeriodMs, 55u);
    EXPECT_TRUE(p.applicationStarted);
    EXPECT_NE(std::string(p.artFolder).find("\\QBArt\\"), std::string::npos) << p.artFolder;

    const int repaints = p.repaintRequests;
    TheModule().clearAlerts();
    Stream(instance, fixture, {3, 17, 4093, 1, 511});
    p = Probe();
    EXPECT_EQ(Alerts(p), std::vector<int>{});
    EXPECT_EQ((std::vector<int>{p.cardCount, p.currentCardId, p.hasFile, p.repaintRequests}),
              (std::vector<int>{4, 2, 1, repaints + 1})) << "the first card in the file is current";
    // The file: "stk" and a number, alone in a folder that only this user can enter.
    const fs::path file = p.streamPath;
    EXPECT_EQ(file.filename().string().rfind("stk", 0), 0u) << file;
    EXPECT_EQ(p.stackName, file.filename().string());
    EXPECT_EQ(file.parent_path().parent_path(), tmp_);
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()), 1);
    struct stat st {};
    ASSERT_EQ(::stat(file.parent_path().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);
    EXPECT_EQ(ReadWholeFile(file), fixture) << "written in order, every byte once";

    auto expectWindows = [](const void* main, const void* handled) {
        const QbPluginProbe q = Probe();
        EXPECT_EQ((std::vector<const void*>{q.mainWindow, q.handledWindow}), (std::vector<const void*>{main, handled}));
        EXPECT_EQ(q.currentCardId, 2);
    };
    // A second window, a resize of the first, a null handle: none of them is taken.
    for (void* handle : {static_cast<void*>(&windowB_), static_cast<void*>(&windowA_), static_cast<void*>(nullptr)}) {
        EXPECT_EQ(SetWindow(instance, handle), 0);
        expectWindows(&windowA_, &windowA_);
    }
    // An instance that ends stops handling its window and takes its file along; the player lives on.
    ASSERT_EQ(plugin_.destroy(instance, nullptr), 0);
    expectWindows(&windowA_, nullptr);
    EXPECT_FALSE(fs::exists(file.parent_path()));
    // A later instance's first window takes over the running player without starting it again.
    EXPECT_EQ(SetWindow(NewInstance(), &windowB_), 0);
    expectWindows(&windowB_, &windowB_);
}

TEST_F(PluginHarness, DamagedStackGivesTheAlertAndABlankStack) {
    const Bytes fixture = ReadWholeFile(kFixtures + "/sample-cards.stk");
    NPP instance = NewInstance();
    ASSERT_EQ(SetWindow(instance, &windowA_), 0);
    TheModule().clearAlerts();
    // The stream broke off inside the cards; the reason is left to the open to find out.
    Stream(instance, Bytes(fixture.begin(), fixture.begin() + 200), {4096}, NPRES_NETWORK_ERR);
    QbPluginProbe p = Probe();
    // The read reports, puts a blank stack in place, and the open reports its error again.
    EXPECT_EQ(Alerts(p), (std::vector<int>{2235, 2305, 2235}));
    EXPECT_EQ((std::vector<int>{p.cardCount, p.currentCardId, p.hasFile}), (std::vector<int>{1, 1, 0}));
    EXPECT_STREQ(p.stackName, "Untitled");
    Stream(instance, fixture, {65536});
    EXPECT_EQ(Probe().cardCount, 4);
}

TEST_F(PluginHarness, WriteAfterAFailedNewStreamTakesNothing) {
    const Bytes fixture = ReadWholeFile(kFixtures + "/sample-cards.stk");
    NPP instance = NewInstance();
    ASSERT_EQ(SetWindow(instance, &windowA_), 0);
    Stream(instance, fixture, {65536});
    for (QbStreamFault fault : {kQbTempFolderLocked, kQbNextOpenFails}) {
        SCOPED_TRACE(fault);
        const QbPluginProbe before = Probe();
        const std::string earlier = before.streamPath;
        TheModule().setStreamFault(fault);
        NPStream stream{};
        uint16_t stype = NP_NORMAL;
        EXPECT_EQ(plugin_.newstream(instance, kMimeType, &stream, false, &stype), NPERR_GENERIC_ERROR);
        TheModule().setStreamFault(kQbNoFault);
        EXPECT_FALSE(Probe().streamFileSet);
        EXPECT_EQ(std::distance(fs::directory_iterator(tmp_), fs::directory_iterator()), 1) << "nothing is left of the failed stream";
        Bytes junk(70000, 'j');
        EXPECT_EQ(plugin_.write(instance, &stream, 0, 70000, junk.data()), 70000) << "the browser never stalls";
        EXPECT_EQ(plugin_.destroystream(instance, &stream, NPRES_DONE), 0);
        const QbPluginProbe after = Probe();
        EXPECT_EQ(ReadWholeFile(earlier), fixture) << "the earlier stream's file is untouched";
        EXPECT_EQ((std::vector<int>{after.repaintRequests, after.alertCount}),
                  (std::vector<int>{before.repaintRequests, before.alertCount})) << "no stack was opened";
    }
}

TEST_F(PluginHarness, PrintGivesAnEmbeddedStackItsTokenLine) {
    NPP instance = NewInstance();
    int device = 0;
    const int lines = Probe().printedLineCount;
    NPPrint embedded{};
    embedded.mode = NP_EMBED;
    embedded.print.embedPrint.platformPrint = &device;
    plugin_.print(instance, &embedded);
    QbPluginProbe p = Probe();
    ASSERT_EQ(p.printedLineCount, lines + 1);
    EXPECT_EQ(p.printDevice, &device);
    EXPECT_EQ(std::vector<int16_t>(p.printLine, p.printLine + 4), (std::vector<int16_t>{0, 0, 500, 500}));
    plugin_.print(nullptr, &embedded);
    EXPECT_EQ(Probe().printedLineCount, lines + 1) << "only the embedded print draws";
}

}  // namespace

#endif  // QB_NPAPI_MODULE
