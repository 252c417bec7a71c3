#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>

#include "UFileErrorLog.h"
#include "bare_log.h"
#include "fault_points.h"
#include "notify_data.h"
#include "np_entry.h"
#include "plugin_test.h"
#include "service_files.h"

// Every allocation of every call fails once: no exception leaves the plug-in, nothing leaks, and
// what the browser hears is an answer that it knows.

namespace {

// A log object for which no line is put together: every allocation is the plug-in's own.
class SilentLog final : public BareLog {
  public:
    int WriteLogStr(const char* /*text*/) override { return 0; }
};

// A browser that allocates nothing, so that every allocation counted is the plug-in's.
NPObject theObject{};

NPNetscapeFuncs quietBrowser() {
    NPNetscapeFuncs table{};
    table.size = sizeof table;
    table.version = 26;
    table.uagent = [](NPP) { return "Quiet/1.0"; };
    table.geturl = [](NPP, const char*, const char*) -> NPError { return 0; };
    table.geturlnotify = [](NPP, const char*, const char*, void*) -> NPError { return 0; };
    table.setvalue = [](NPP, NPPVariable, void*) -> NPError { return 0; };
    table.createobject = [](NPP, NPClass* type) {
        theObject = {type, 1};
        return &theObject;
    };
    table.retainobject = [](NPObject* object) { return object; };
    table.releaseobject = [](NPObject*) {};
    table.utf8fromidentifier = [](NPIdentifier) {
        static char name[] = "info";
        return name;
    };
    return table;
}

// The process's log while a test runs.
enum class LogKind { kAbsent, kSilent, kFile };

class AllocationFailure : public testing::TestWithParam<LogKind> {
  protected:
    AllocationFailure() {
        errorLog = GetParam() == LogKind::kSilent ? &m_log : nullptr;
        std::filesystem::create_directories(library() + "/Logs");
        removeServiceFiles();
        EXPECT_EQ(NP_Initialize(&m_browser), 0);
        EXPECT_EQ(NP_GetEntryPoints(&plugin), 0);
        setParameters({{"a", "1"},
                       {"hostrooturl", "/here"},
                       {"signature", "abc"},
                       {"_userpassword", "secret"},
                       {"b", "2"}});
    }
    ~AllocationFailure() override {
        removeServiceFiles();
        std::filesystem::remove_all(library());
        errorLog = nullptr;
    }

    static bool hasLog() { return GetParam() != LogKind::kAbsent; }
    static std::string library() { return std::string(std::getenv("HOME")) + "/Library"; }

    // A log in a file, made and destroyed where the allocations are counted.
    class FileLog {
      public:
        FileLog() {
            if (GetParam() == LogKind::kFile) errorLog = &m_log.emplace();
        }
        ~FileLog() { close(); }
        FileLog(const FileLog&) = delete;
        FileLog& operator=(const FileLog&) = delete;

        void close() {
            if (m_log) errorLog = nullptr;
            m_log.reset();
        }

      private:
        std::optional<UFileErrorLog> m_log;
    };

    void setParameters(const std::vector<std::pair<const char*, const char*>>& parameters) {
        m_names.clear();
        m_values.clear();
        for (const auto& [name, value] : parameters) {
            m_names.push_back(const_cast<char*>(name));
            m_values.push_back(const_cast<char*>(value));
        }
    }

    NPError create() {
        handle = {};
        return plugin.newp(nullptr, &handle, 1, static_cast<int16>(m_names.size()), m_names.data(),
                           m_values.data(), nullptr);
    }

    // One answer of the browser's, in blocks. Whatever fails inside, every byte counts as taken.
    void deliver(int type, const std::string& answer) {
        streamData notify{};
        notify.type = type;
        NPStream stream{};
        stream.url = "http://here/";
        stream.notifyData = &notify;
        uint16 mode = 0;
        plugin.newstream(&handle, nullptr, &stream, 0, &mode);
        for (std::size_t at = 0; at < answer.size(); at += 64000) {
            const auto size = static_cast<int32>(std::min<std::size_t>(64000, answer.size() - at));
            char* block = const_cast<char*>(answer.data()) + at;
            allTaken = allTaken && plugin.write(&handle, &stream, 0, size, block) == size;
        }
        plugin.destroystream(&handle, &stream, 0);
        plugin.urlnotify(&handle, "javascript:c_addcomm('LOGGING_ENABLE')", 0, &notify);
    }

    // Makes an instance, the first of the `nth` allocation failing. @return whether any was left
    // to fail.
    bool createWithFailure(int nth) {
        NPError result = 0;
        bool isHit = false;
        bool isAlive = false;
        int live = 0;
        {
            const AllocationFault fault(nth);
            FileLog file;
            result = create();
            isHit = fault.allocations() >= nth;
            isAlive = handle.pdata != nullptr;
            if (isAlive) plugin.destroy(&handle, nullptr);
            file.close();
            live = fault.live();
        }
        EXPECT_EQ(live, 0) << "allocation " << nth;
        EXPECT_EQ(isAlive, result == 0) << "allocation " << nth;
        // With a log object the allocation may have been a line's, and only that is lost.
        if (result != 0 || !hasLog()) {
            EXPECT_EQ(result, isHit ? 5 : 0) << "allocation " << nth;
        }
        return isHit;
    }

    NPPluginFuncs plugin{};
    NPP_t handle{};
    bool allTaken = true;

  private:
    SilentLog m_log;
    NPNetscapeFuncs m_browser = quietBrowser();
    std::vector<char*> m_names;
    std::vector<char*> m_values;
};

TEST_P(AllocationFailure, InCreationIsAnInstanceOutOfMemory) {
    int nth = 1;
    while (createWithFailure(nth)) ++nth;
    EXPECT_GT(nth, 8);
}

TEST_P(AllocationFailure, InAProbeIsAnInstanceOutOfMemory) {
    setParameters({{"_probevpn", ""}});
    int nth = 1;
    while (createWithFailure(nth)) ++nth;
    EXPECT_GT(nth, 8);
}

TEST_P(AllocationFailure, InALaunchIsAnInstanceOutOfMemory) {
    installService("exit=0");
    setParameters({{"last_param", ""}, {"a", "1"}});
    int nth = 1;
    while (createWithFailure(nth)) ++nth;
    EXPECT_GT(nth, 8);
}

TEST_P(AllocationFailure, InAConversationCostsNoMoreThanTheConversation) {
    const std::string answer(150000, 'x');
    NPWindow window{};
    window.window = &window;
    installService("exit=0");
    setParameters({{"last_param", ""}});
    bool isHit = true;
    for (int nth = 1; isHit; ++nth) {
        int live = 0;
        bool isAlive = false;
        {
            const AllocationFault fault(nth);
            FileLog file;
            if (create() == 0) {
                void* value = nullptr;
                plugin.setwindow(&handle, &window);
                plugin.getvalue(&handle, NPPVpluginScriptableNPObject, &value);
                deliver(3, answer);
                deliver(2, answer);
                plugin.destroy(&handle, nullptr);
            }
            isAlive = handle.pdata != nullptr;
            isHit = fault.allocations() >= nth;
            file.close();
            live = fault.live();
        }
        EXPECT_EQ(live, 0) << "allocation " << nth;
        EXPECT_FALSE(isAlive) << "allocation " << nth;
    }
    EXPECT_TRUE(allTaken);
}

TEST_P(AllocationFailure, InStartUpIsNoMoreThanAnError) {
    NPNetscapeFuncs table = quietBrowser();
    bool isHit = true;
    for (int nth = 1; isHit; ++nth) {
        NPError result = 0;
        {
            const AllocationFault fault(nth);
            const FileLog file;
            result = NP_Initialize(&table);
            isHit = fault.allocations() >= nth;
        }
        EXPECT_TRUE(result == 0 || (isHit && result == 5)) << "allocation " << nth;
    }
    EXPECT_EQ(NP_Initialize(&table), 0);
}

std::string nameOf(const testing::TestParamInfo<LogKind>& row) {
    constexpr const char* kNames[] = {"Absent", "Present", "InAFile"};
    return kNames[static_cast<int>(row.param)];
}

INSTANTIATE_TEST_SUITE_P(LogObject, AllocationFailure,
                         testing::Values(LogKind::kAbsent, LogKind::kSilent, LogKind::kFile),
                         nameOf);

// Who owns a converted property name.

TEST(ConvertedName, IsReleasedWhenAskedForAndKeptWhenRead) {
    NPNetscapeFuncs table = quietBrowser();
    // This browser's names are made where the count sees it, and stay in reach for leak checkers.
    table.utf8fromidentifier = [](NPIdentifier name) -> NPUTF8* {
        static char* names[4] = {};
        static int made = 0;
        names[made] = static_cast<char*>(std::malloc(8));
        return std::strcpy(names[made++], static_cast<const char*>(name));
    };
    ASSERT_EQ(NP_Initialize(&table), 0);
    NPPluginFuncs plugin{};
    ASSERT_EQ(NP_GetEntryPoints(&plugin), 0);
    NPP_t handle{};
    ASSERT_EQ(plugin.newp(nullptr, &handle, 1, 0, nullptr, nullptr, nullptr), 0);
    for (const char* name : {"info", "other"}) {
        char text[8] = {};
        std::strcpy(text, name);
        {
            const AllocationFault count(0);
            theObject._class->hasProperty(&theObject, text);
            EXPECT_EQ(count.live(), 0) << name;
        }
        NPVariant result{};
        const AllocationFault count(0);
        theObject._class->getProperty(&theObject, text, &result);
        EXPECT_EQ(count.live(), 1) << name;
    }
    plugin.destroy(&handle, nullptr);
}

}  // namespace
