#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "npapi/npfunctions.h"

/// A URL request that the plug-in made.
struct BrowserRequest {
    NPP instance;
    std::string url;
    const char* target;
    void* notifyData;
    bool wantsNotice;  ///< made with geturlnotify, so that a stream and a notice follow
};

/// A browser that does nothing but keep an account: of every call that the plug-in makes, of the
/// memory it takes, and of the references to its script object.
///
/// One at a time: the browser's functions find it through a process-wide pointer. It outlives the
/// plug-in's module. One thread.
class ScriptedBrowser {
  public:
    ScriptedBrowser();
    ~ScriptedBrowser();
    ScriptedBrowser(const ScriptedBrowser&) = delete;
    ScriptedBrowser& operator=(const ScriptedBrowser&) = delete;

    /// The whole table, every entry set, version 0.26; a test changes it before handing it over.
    NPNetscapeFuncs table{};

    // What the browser answers.

    const char* userAgent = "Scripted/1.0";
    /// The answer to the n-th URL request, counted from 1; 0 accepts.
    std::function<NPError(int nth)> answerRequest = [](int) -> NPError { return 0; };
    /// Runs inside an accepted geturlnotify, before it returns.
    std::function<void(const BrowserRequest&)> insideRequest;
    NPError answer = 0;          ///< to setvalue, getvalue and everything else that has a result
    bool createsObjects = true;  ///< false: createobject answers null
    bool hasMemory = true;       ///< false: memalloc answers null
    bool convertsIdentifiers = true;  ///< false: utf8fromidentifier answers null

    // What the plug-in did.

    /// Every call in order, as "entry(argument, ...)"; pointers in hexadecimal, texts quoted.
    std::vector<std::string> calls;
    /// The URL requests among them.
    std::vector<BrowserRequest> requests;
    const BrowserRequest& lastRequest() const { return requests.at(requests.size() - 1); }

    /// How often `entry` was called.
    int count(const std::string& entry) const;

    std::size_t liveMemory() const { return m_memory.size(); }
    int foreignFrees() const { return m_foreignFrees; }

    /// The identifier that stands for `name`.
    static NPIdentifier identifier(const char* name) { return const_cast<char*>(name); }

    /// Drops all references to the script objects, as a browser does when the page is gone.
    void dropObjects();

    // The inside, for the table's functions.

    static ScriptedBrowser& current();
    template <typename... Arguments>
    void note(const char* entry, const Arguments&... arguments);
    NPError request(BrowserRequest request);
    void* allocate(std::size_t size);
    void release(void* memory);
    /// A copy of `name` from the C library's `malloc`. It is the plug-in's from then on; one that
    /// the plug-in keeps for good stays reachable here, so that leak checkers accept it.
    char* convertName(const char* name);
    void forget(NPObject* object) { m_objects.erase(object); }
    void remember(NPObject* object) { m_objects.insert(object); }

  private:
    std::set<void*> m_memory;
    std::set<NPObject*> m_objects;
    int m_foreignFrees = 0;
};

/// One argument as `ScriptedBrowser::calls` shows it.
template <typename T>
std::string shown(const T& argument) {
    std::ostringstream text;
    if constexpr (std::is_pointer_v<T>) {
        text << reinterpret_cast<const void*>(argument);
    } else {
        text << +argument;
    }
    return text.str();
}

inline std::string shown(const char* text) {
    return text != nullptr ? "\"" + std::string(text) + "\"" : "null";
}

/// A call as `ScriptedBrowser::calls` shows it.
template <typename... Arguments>
std::string callText(const char* entry, const Arguments&... arguments) {
    std::string list;
    ((list += (list.empty() ? "" : ", ") + shown(arguments)), ...);
    return std::string(entry) + "(" + list + ")";
}

template <typename... Arguments>
void ScriptedBrowser::note(const char* entry, const Arguments&... arguments) {
    calls.push_back(callText(entry, arguments...));
}
