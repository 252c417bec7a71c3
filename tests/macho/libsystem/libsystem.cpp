#include "libsystem.h"

#include "symbol_table.h"

namespace macho::libsystem {

namespace {

SymbolTable makeTable() {
    SymbolTable table;
    for (const auto add :
         {addCharacters, addErrors, addExits, addFiles, addFolders, addFormats, addMemory,
          addProcesses, addSignals, addSockets, addSystem, addThreads, addTime, addWaits})
        add(table);
    return table;
}

}  // namespace

void* find(const std::string& name) {
    static const SymbolTable table = makeTable();
    if (void* standIn = table.find(name)) return standIn;
    if (void* same = sameCall(name)) return same;
    // "_stat$INODE64", "_fopen$UNIX2003": a later form of a call, the one that this is about.
    const std::size_t form = name.rfind('$');
    return form != std::string::npos ? find(name.substr(0, form)) : nullptr;
}

}  // namespace macho::libsystem
