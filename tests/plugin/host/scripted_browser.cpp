#include "scripted_browser.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "browser_table.h"

namespace {

ScriptedBrowser* currentBrowser = nullptr;

}  // namespace

ScriptedBrowser::ScriptedBrowser() {
    if (currentBrowser != nullptr) throw std::logic_error("one scripted browser at a time");
    currentBrowser = this;
    fillBrowserTable(table);
}

ScriptedBrowser::~ScriptedBrowser() {
    for (void* memory : m_memory) std::free(memory);
    currentBrowser = nullptr;
}

ScriptedBrowser& ScriptedBrowser::current() { return *currentBrowser; }

int ScriptedBrowser::count(const std::string& entry) const {
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const std::string& call) {
        return call.compare(0, entry.size() + 1, entry + "(") == 0;
    }));
}

NPError ScriptedBrowser::request(BrowserRequest made) {
    requests.push_back(std::move(made));
    const NPError refused = answerRequest(static_cast<int>(requests.size()));
    if (refused == 0 && insideRequest) {
        const BrowserRequest copy = requests.back();
        insideRequest(copy);
    }
    return refused;
}

void* ScriptedBrowser::allocate(std::size_t size) {
    if (!hasMemory) return nullptr;
    void* memory = std::malloc(size);
    m_memory.insert(memory);
    return memory;
}

void ScriptedBrowser::release(void* memory) {
    if (memory != nullptr && m_memory.erase(memory) == 0) {
        ++m_foreignFrees;
        return;
    }
    std::free(memory);
}

char* ScriptedBrowser::convertName(const char* name) {
    static auto& handedOut = *new std::vector<char*>;
    return handedOut.emplace_back(strdup(name));
}

void ScriptedBrowser::dropObjects() {
    const std::set<NPObject*> objects = std::exchange(m_objects, {});
    for (NPObject* object : objects) object->_class->deallocate(object);
}
