#include "exports_trie.h"

namespace macho {

namespace {

constexpr std::uint64_t kReexport = 8;
constexpr int kDeepest = 256;

void walk(ByteSpan trie, std::size_t node, const std::string& prefix, int depth,
          std::map<std::string, std::uint64_t>& names) {
    if (depth > kDeepest) throw ImageError("the exports trie goes round in circles");
    Cursor cursor(trie, node);
    const std::uint64_t terminalSize = cursor.uleb();
    Cursor children(trie, cursor.position() + terminalSize);
    if (terminalSize != 0) {
        const std::uint64_t flags = cursor.uleb();
        if ((flags & kReexport) == 0) names[prefix] = cursor.uleb();
    }
    for (int left = children.read<std::uint8_t>(); left > 0; --left) {
        const std::string edge = children.text();
        walk(trie, children.uleb(), prefix + edge, depth + 1, names);
    }
}

}  // namespace

std::map<std::string, std::uint64_t> readExports(ByteSpan trie) {
    std::map<std::string, std::uint64_t> names;
    if (!trie.empty()) walk(trie, 0, "", 0, names);
    return names;
}

}  // namespace macho
