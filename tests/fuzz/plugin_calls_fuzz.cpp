// A browser that makes any calls in any order, answers inside of them and takes the instance away
// wherever it likes: nothing is touched that has gone, and memory, names and references are given
// back as they must be.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "fuzz_input.h"
#include "fuzz_plugin.h"
#include "notify_data.h"
#include "np_entry.h"
#include "scriptable.h"

namespace {

class Browser;
Browser* current = nullptr;

// Where utf8fromidentifier leaves what it gave last.
char* convertedName = nullptr;

void (*releaseForReal)(NPObject*) = nullptr;

// Two embeddings in a browser that goes by the input.
class Browser {
  public:
    explicit Browser(FuzzInput& input) : m_input(input) {
        current = this;
        NPNetscapeFuncs& table = m_host.browser.table;
        releaseForReal = table.releaseobject;
        table.releaseobject = [](NPObject* object) {
            current->inside();
            releaseForReal(object);
        };
        table.utf8fromidentifier = [](NPIdentifier name) -> NPUTF8* {
            return convertedName = strdup(static_cast<const char*>(name));
        };
        EXPECT_EQ(NP_Initialize(&table), 0);
        m_host.browser.insideRequest = [this](const BrowserRequest&) { inside(); };
        m_host.browser.answerRequest = [this](int) {
            return static_cast<NPError>(m_input.below(8) == 7 ? 1 : 0);
        };
    }
    ~Browser() {
        m_depth = kMostDepth;
        for (std::size_t i = 0; i < m_handles.size(); ++i) destroy(i);
        checkAccount();
    }
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    void run() {
        for (int i = 0; i < 60 && !m_input.isEmpty(); ++i) call();
    }

  private:
    static constexpr int kMostDepth = 3;

    // Calls made while the plug-in waits for the browser.
    void inside() {
        if (m_depth == kMostDepth || m_input.isEmpty()) return;
        ++m_depth;
        for (std::size_t count = m_input.below(4); count > 0; --count) call();
        --m_depth;
    }

    void call() {
        changeMachine();
        const std::size_t which = m_input.below(m_handles.size());
        NPP_t* const handle = &m_handles[which];
        switch (m_input.below(9)) {
            case 0:
                return create(which);
            case 1:
                return destroy(which);
            case 2:
                return window(handle);
            case 3:
            case 4:
                return stream(handle);
            case 5: {
                const std::string url = m_input.line();
                m_host.plugin.urlnotify(handle, url.c_str(),
                                        static_cast<NPReason>(m_input.below(3)), notifyData());
                return;
            }
            case 6:
                return value(handle);
            case 7:
                return script();
            default:
                m_host.plugin.print(handle, nullptr);
                m_host.plugin.event(handle, nullptr);
                m_host.plugin.asfile(handle, nullptr, nullptr);
        }
    }

    void changeMachine() {
        const std::size_t change = m_input.below(32);
        machine().pidFile = (change & 1) != 0 ? std::optional<std::string>("42") : std::nullopt;
        machine().processLives = (change & 2) != 0;
        machine().processId = (change & 4) != 0 ? 42 : 41;
        machine().exitStatus = (change & 8) != 0 ? 2 : 0;
        machine().answer.reset();
        if ((change & 16) != 0) machine().answer = m_input.text();
    }

    void create(std::size_t which) {
        NPP const handle = &m_handles[which];
        static const char* const names[] = {"_probevpn", "last_param", "_installvpn", "other"};
        // A browser asks for an instance only where there is none, nor one that is being made or
        // taken away.
        if (handle->pdata != nullptr || m_making || m_destroying[which] != 0) return;
        m_making = true;
        std::string name = names[m_input.below(4)];
        std::string text = m_input.line();
        std::array<char*, 1> argn{name.data()};
        std::array<char*, 1> argv{text.data()};
        const NPError result =
            m_host.plugin.newp(nullptr, handle, 1, 1, argn.data(), argv.data(), nullptr);
        EXPECT_EQ(result == NPERR_NO_ERROR, handle->pdata != nullptr);
        m_made += result == NPERR_NO_ERROR ? 1 : 0;
        m_making = false;
    }

    // Once more inside of itself, as when the page goes while its script object does.
    void destroy(std::size_t which) {
        if (m_destroying[which] == 2) return;
        ++m_destroying[which];
        m_released += m_handles[which].pdata != nullptr ? 1 : 0;
        EXPECT_EQ(m_host.plugin.destroy(&m_handles[which], nullptr), 0);
        EXPECT_EQ(m_handles[which].pdata, nullptr);
        --m_destroying[which];
    }

    void window(NPP handle) {
        m_window.window = m_input.flag() ? this : nullptr;
        m_host.plugin.setwindow(handle, m_input.flag() ? &m_window : nullptr);
    }

    void* notifyData() {
        const std::array<streamData*, 4> all{nullptr, g_h_js, g_s_js, g_nevo_http};
        return all[m_input.below(all.size())];
    }

    void stream(NPP handle) {
        std::string url = m_input.line();
        std::string bytes = m_input.text();
        char type[] = "text/plain";
        NPStream stream{};
        stream.url = url.c_str();
        stream.end = m_input.below(8) == 7 ? 100000 : static_cast<uint32>(bytes.size());
        stream.notifyData = notifyData();
        uint16 mode = 0;
        if (m_input.flag()) m_host.plugin.newstream(handle, type, &stream, 0, &mode);
        const int32 room = m_host.plugin.writeready(handle, &stream);
        EXPECT_EQ(room, handle->pdata != nullptr ? 64000 : 0x0FFFFFFF);
        const auto length = static_cast<int32>(bytes.size());
        EXPECT_EQ(m_host.plugin.write(handle, &stream, -1, length, bytes.data()), length);
        if (m_input.flag()) {
            m_host.plugin.destroystream(handle, &stream, static_cast<NPReason>(m_input.below(3)));
        }
    }

    void value(NPP handle) {
        const auto variable = static_cast<NPPVariable>(m_input.below(20));
        void* answer = nullptr;
        m_host.plugin.getvalue(handle, variable, m_input.flag() ? &answer : nullptr);
        m_lent += variable == NPPVpluginScriptableNPObject && answer != nullptr ? 1 : 0;
        m_host.plugin.setvalue(handle, static_cast<NPNVariable>(variable), &answer);
    }

    // The page uses the script object, which the plug-in's class serves whatever the instance.
    void script() {
        char name[] = "info";
        name[0] = m_input.flag() ? 'i' : 'x';
        if (m_input.flag()) {
            EXPECT_EQ(sNPClass.hasProperty(nullptr, name), name[0] == 'i');
            return;
        }
        NPVariant result{};
        EXPECT_TRUE(sNPClass.getProperty(nullptr, name, &result));
        free(convertedName);  // the plug-in does not
        if (result.type == NPVariantType_String) {
            free(const_cast<NPUTF8*>(result.value.stringValue.UTF8Characters));
        }
    }

    // Each instance made one object, kept it once and once more for each time that it was asked
    // for, and gave it back once for each time that the instance was to go.
    void checkAccount() {
        const ScriptedBrowser& browser = m_host.browser;
        EXPECT_EQ(browser.count("createobject"), m_made);
        EXPECT_EQ(browser.count("retainobject"), m_made + m_lent);
        EXPECT_EQ(browser.count("releaseobject"), m_released);
    }

    FuzzInput& m_input;
    FuzzPlugin m_host;
    std::array<NPP_t, 2> m_handles{};
    NPWindow m_window{};
    std::array<int, 2> m_destroying{};
    int m_depth = 0;
    int m_made = 0;
    int m_lent = 0;
    int m_released = 0;
    bool m_making = false;
};

}  // namespace

void fuzzOne(FuzzInput& input) { Browser(input).run(); }
