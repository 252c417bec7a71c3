// Case and white space in a locale whose letters and blanks go beyond ASCII. It is made here, so
// that none needs to be installed.

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "CString.h"
#include "StringCase.h"
#include "temporary_home.h"
#include "text_of.h"

namespace {

const char kCharacters[] =
    "<code_set_name> LATIN\n"
    "<mb_cur_min> 1\n"
    "<mb_cur_max> 1\n"
    "<comment_char> %\n"
    "<escape_char> /\n"
    "CHARMAP\n"
    "<U0000>..<U007F> /x00 ascii\n"
    "<U0080>..<U00FE> /x80 beyond\n"
    "END CHARMAP\n";

// One pair of letters, and 'q' which is no letter here.
const char kClasses[] =
    "comment_char %\n"
    "escape_char /\n"
    "LC_CTYPE\n"
    "upper <U0041>;<U00C4>\n"
    "lower <U0061>;<U00E4>\n"
    "space <U0009>;<U000A>;<U000B>;<U000C>;<U000D>;<U0020>;<U00A0>\n"
    "toupper (<U0061>,<U0041>);(<U00E4>,<U00C4>)\n"
    "tolower (<U0041>,<U0061>);(<U00C4>,<U00E4>)\n"
    "END LC_CTYPE\n";

class StringLocale : public TemporaryHome {
  protected:
    void SetUp() override {
        std::ofstream(home() + "/characters") << kCharacters;
        std::ofstream(home() + "/classes") << kClasses;
        const std::string making =
            "cd " + home() + " && localedef -c -f characters -i classes ./latin 2>/dev/null";
        // Its status, too, complains of categories that nothing here needs: what counts is the
        // file.
        [[maybe_unused]] const int status = system(making.c_str());
        ASSERT_TRUE(std::filesystem::exists(home() + "/latin/LC_CTYPE")) << making;
        setenv("LOCPATH", home().c_str(), 1);
        ASSERT_NE(setlocale(LC_CTYPE, "latin"), nullptr);
    }
    ~StringLocale() override { setlocale(LC_CTYPE, "C"); }
};

TEST_F(StringLocale, MakeUpperAndMakeLowerFollowIt) {
    CString s("aAqQ\xE4\xC4");
    s.MakeUpper();
    EXPECT_EQ(textOf(s), "AAqQ\xC4\xC4");
    s.MakeLower();
    EXPECT_EQ(textOf(s), "aaqQ\xE4\xE4");
}

TEST_F(StringLocale, ConvertersFollowIt) {
    char text[] = "aAqQ\xE4\xC4";
    EXPECT_STREQ(_strupr(text), "AAqQ\xC4\xC4");
    EXPECT_STREQ(_strlwr(text), "aaqQ\xE4\xE4");
}

TEST_F(StringLocale, ComparisonsFoldAsciiAllTheSame) {
    EXPECT_EQ(CString("aq").CompareNoCase("AQ"), 0);
    EXPECT_EQ(CString("\xC4").CompareNoCase("\xE4"), 0xC4 - 0xE4);
    EXPECT_EQ(_strcmpi("aq\xC4", "AQ\xE4"), 0xC4 - 0xE4);
}

TEST_F(StringLocale, TrimmingTakesItsWhiteSpace) {
    CString s(" \xA0\tx\xA0 ");
    s.TrimLeft();
    EXPECT_EQ(textOf(s), "x\xA0 ");
    s.TrimRight();
    EXPECT_EQ(textOf(s), "x");
}

}  // namespace
