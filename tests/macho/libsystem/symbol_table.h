#pragma once

#include <string>
#include <unordered_map>

namespace macho::libsystem {

/// Names as images import them, with what stands for them.
class SymbolTable {
  public:
    template <typename Function>
    void addCall(const char* name, Function* function) {
        m_symbols[name] = reinterpret_cast<void*>(function);
    }
    void addVariable(const char* name, void* address) { m_symbols[name] = address; }

    void* find(const std::string& name) const {
        const auto found = m_symbols.find(name);
        return found != m_symbols.end() ? found->second : nullptr;
    }

  private:
    std::unordered_map<std::string, void*> m_symbols;
};

// One for each file of stand-ins.
void addCharacters(SymbolTable& table);
void addErrors(SymbolTable& table);
void addExits(SymbolTable& table);
void addFiles(SymbolTable& table);
void addFolders(SymbolTable& table);
void addFormats(SymbolTable& table);
void addMemory(SymbolTable& table);
void addProcesses(SymbolTable& table);
void addSignals(SymbolTable& table);
void addSockets(SymbolTable& table);
void addSystem(SymbolTable& table);
void addThreads(SymbolTable& table);
void addTime(SymbolTable& table);
void addWaits(SymbolTable& table);

/// @return this system's own function for a call that both systems have alike; null for others.
void* sameCall(const std::string& name);

}  // namespace macho::libsystem
