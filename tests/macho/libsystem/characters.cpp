#include <cctype>
#include <cstdint>

#include "symbol_table.h"

// Character classes as <ctype.h> and <runetype.h> of a Mac keep them: a word of bits for each
// character, in a table that calls look into without asking. Beyond ASCII nothing has a class.

namespace macho::libsystem {

namespace {

struct Class {
    std::uint32_t bit;
    int (*holds)(int);
};

constexpr Class kClasses[] = {
    {0x100, std::isalpha},   {0x200, std::iscntrl},  {0x400, std::isdigit},
    {0x800, std::isgraph},   {0x1000, std::islower}, {0x2000, std::ispunct},
    {0x4000, std::isspace},  {0x8000, std::isupper}, {0x10000, std::isxdigit},
    {0x20000, std::isblank}, {0x40000, std::isprint}};

std::uint32_t classOf(int character) {
    if (character < 0 || character > 127) return 0;
    std::uint32_t bits = 0;
    for (const Class& each : kClasses)
        if (each.holds(character) != 0) bits |= each.bit;
    // A digit's value stands in the lowest bits.
    if (std::isdigit(character) != 0)
        bits |= static_cast<std::uint32_t>(character - '0');
    else if (std::isxdigit(character) != 0)
        bits |= static_cast<std::uint32_t>(std::tolower(character) - 'a' + 10);
    return bits;
}

int maskedClass(int character, unsigned long mask) {
    return static_cast<int>(classOf(character) & static_cast<std::uint32_t>(mask));
}

int lower(int character) { return std::tolower(character); }
int upper(int character) { return std::toupper(character); }

struct RuneLocale {
    char magic[8];
    char encoding[32];
    void* functions[2];
    std::int32_t invalid;
    std::uint32_t classes[256];
    std::int32_t lowers[256];
    std::int32_t uppers[256];
    char rest[72];
};
static_assert(sizeof(RuneLocale) == 3208);

RuneLocale g_runes;

int longestCharacter(void* /*locale*/) { return 1; }

}  // namespace

void addCharacters(SymbolTable& table) {
    for (int i = 0; i < 256; ++i) {
        g_runes.classes[i] = classOf(i);
        g_runes.lowers[i] = i < 128 ? std::tolower(i) : i;
        g_runes.uppers[i] = i < 128 ? std::toupper(i) : i;
    }
    table.addVariable("__DefaultRuneLocale", &g_runes);
    table.addCall("___maskrune", maskedClass);
    table.addCall("___maskrune_l", maskedClass);
    table.addCall("___tolower", lower);
    table.addCall("___toupper", upper);
    table.addCall("____mb_cur_max_l", longestCharacter);
}

}  // namespace macho::libsystem
