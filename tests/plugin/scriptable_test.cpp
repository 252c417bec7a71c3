#include <cstdlib>
#include <cstring>

#include "child_process.h"
#include "plugin_test.h"
#include "scripted_service.h"

// The page's view of the plug-in: one object with one property.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What goes out on the wire, its terminating zero included.
const std::string kInfoRequest(
    "GET /vpn.php?INFO&JS HTTP/1.1\r\nHOST: 127.0.0.1:44444\r\nAccept: */*\r\n"
    "Scriptable-request: 1\r\n\r\n\0",
    93);

class Scriptable : public PluginTest {
  protected:
    Scriptable() {
        EXPECT_EQ(page.create(), 0);
        object = page.record().scriptableObject;
        log.clear();
        browser.calls.clear();
    }

    const NPClass& type() const { return *object->_class; }

    // Reads a property as a browser does. @return its text in quotes, "false", or what went wrong.
    std::string read(const char* name) {
        NPVariant result;
        std::memset(&result, 0x5A, sizeof result);
        if (!type().getProperty(object, ScriptedBrowser::identifier(name), &result))
            return "exception";
        if (result.type == NPVariantType_Bool) return result.value.boolValue ? "true" : "false";
        if (result.type != NPVariantType_String) return "type " + std::to_string(result.type);
        const NPString& text = result.value.stringValue;
        const std::string value(text.UTF8Characters, text.UTF8Length);
        if (text.UTF8Characters[text.UTF8Length] != '\0') return "not terminated";
        std::free(const_cast<char*>(text.UTF8Characters));
        return "\"" + value + "\"";
    }

    // The lines of a read that fails with `line`.
    static std::vector<std::string> failure(const std::string& line) {
        return {"[scriptableGetProperty] \n", "[scriptableGetProperty] Property name is 'info'\n",
                "[scriptableGetProperty] ERROR! " + line + "\n",
                "[scriptableGetProperty] Return value 'false' \n"};
    }

    Embedding page{plugin};
    NPObject* object = nullptr;
    const int m_descriptors = openDescriptors();
};

TEST_F(Scriptable, HasAClassOfVersion3WithFiveOperations) {
    EXPECT_EQ(type().structVersion, 3U);
    EXPECT_NE(type().allocate, nullptr);
    EXPECT_NE(type().deallocate, nullptr);
    EXPECT_EQ(type().invalidate, nullptr);
    EXPECT_NE(type().hasMethod, nullptr);
    EXPECT_EQ(type().invoke, nullptr);
    EXPECT_EQ(type().invokeDefault, nullptr);
    EXPECT_NE(type().hasProperty, nullptr);
    EXPECT_NE(type().getProperty, nullptr);
    EXPECT_EQ(type().setProperty, nullptr);
    EXPECT_EQ(type().removeProperty, nullptr);
    EXPECT_EQ(type().enumerate, nullptr);
    EXPECT_EQ(type().construct, nullptr);
}

TEST_F(Scriptable, TakesItsMemoryFromTheBrowser) {
    NPObject* made = type().allocate(page.handle(), object->_class);
    ASSERT_NE(made, nullptr);
    EXPECT_THAT(browser.calls, ElementsAre("memalloc(16)"));
    type().deallocate(made);
    EXPECT_EQ(browser.calls.back(), callText("memfree", static_cast<void*>(made)));
    EXPECT_THAT(log.events(), ElementsAre("[scriptableAllocate] \n", "[scriptableDeallocate]\n"));
}

TEST_F(Scriptable, ReportsThatTheBrowserHasNoMemory) {
    browser.hasMemory = false;
    EXPECT_EQ(type().allocate(page.handle(), object->_class), nullptr);
    EXPECT_THAT(log.events(), ElementsAre("[scriptableAllocate] \n",
                                          "[scriptableAllocate] ERROR! Cannot allocate memory\n"));
}

TEST_F(Scriptable, DeallocatesNothingForNull) {
    type().deallocate(nullptr);
    EXPECT_THAT(browser.calls, IsEmpty());
    EXPECT_THAT(log.events(), ElementsAre("[scriptableDeallocate]\n"));
}

TEST_F(Scriptable, HasNoMethods) {
    for (const char* name : {"info", "toString", ""})
        EXPECT_FALSE(type().hasMethod(object, ScriptedBrowser::identifier(name)));
    EXPECT_THAT(browser.calls, IsEmpty());
    EXPECT_EQ(log.events(), std::vector<std::string>(3, "[scriptableHasMethod]\n"));
}

struct Name {
    const char* text;
    bool known;
};

class PropertyName : public Scriptable, public testing::WithParamInterface<Name> {};

TEST_P(PropertyName, IsKnownOnlyWhenItIsInfo) {
    EXPECT_EQ(type().hasProperty(object, ScriptedBrowser::identifier(GetParam().text)),
              GetParam().known);
    EXPECT_THAT(log.events(), ElementsAre("[scriptableHasProperty] \n"));
    EXPECT_THAT(browser.calls, ElementsAre(callText("utf8fromidentifier", GetParam().text)));
}

TEST_P(PropertyName, OtherThanInfoIsFalseWithoutAConnection) {
    if (GetParam().known) return;
    ScriptedService service({});
    EXPECT_EQ(read(GetParam().text), "false");
    EXPECT_THAT(service.requests(), IsEmpty());
    EXPECT_THAT(log.events(), ElementsAre("[scriptableGetProperty] \n",
                                          "[scriptableGetProperty] Property name is not 'info'\n",
                                          "[scriptableGetProperty] Return value 'false' \n"));
}

INSTANTIATE_TEST_SUITE_P(Names, PropertyName,
                         testing::Values(Name{"info", true}, Name{"Info", false},
                                         Name{"INFO", false}, Name{"inf", false},
                                         Name{"info ", false}, Name{"information", false},
                                         Name{"", false}, Name{"toString", false}),
                         [](const auto& row) { return "Name" + std::to_string(row.index); });

TEST_F(Scriptable, ANameThatCannotBeConvertedIsNotInfo) {
    browser.convertsIdentifiers = false;
    EXPECT_FALSE(type().hasProperty(object, ScriptedBrowser::identifier("info")));
    EXPECT_EQ(read("info"), "false");
}

// Reading `info`.

TEST_F(Scriptable, InfoIsTheBodyOfTheServicesAnswer) {
    ScriptedService service({.requestSize = 93, .segments = {"HTTP/1.1 200 OK\r\n\r\nstate=up"}});
    EXPECT_EQ(read("info"), "\"state=up\"");
    EXPECT_THAT(service.requests(), ElementsAre(kInfoRequest));
    EXPECT_EQ(openDescriptors(), m_descriptors);
    EXPECT_THAT(log.events(), ElementsAre("[scriptableGetProperty] \n",
                                          "[scriptableGetProperty] Property name is 'info'\n",
                                          "[scriptableGetProperty] Return value 'state=up' \n"));
}

TEST_F(Scriptable, EveryReadIsAConnectionOfItsOwn) {
    ScriptedService service({.requestSize = 93, .segments = {"h\r\n\r\nbody"}});
    for (int i = 0; i < 20; ++i) EXPECT_EQ(read("info"), "\"body\"");
    EXPECT_EQ(service.requests(), std::vector<std::string>(20, kInfoRequest));
}

struct Answer {
    const char* name;
    std::string text;
    std::string value;
};

class InfoAnswer : public Scriptable, public testing::WithParamInterface<Answer> {};

TEST_P(InfoAnswer, GivesTheBodyOfTheFirst511Bytes) {
    ScriptedService service({.requestSize = 93, .segments = {GetParam().text}});
    EXPECT_EQ(read("info"), GetParam().value);
    service.requests();
    EXPECT_EQ(openDescriptors(), m_descriptors);
    EXPECT_EQ(log.contains("ERROR! Bad response from nevo\n"), GetParam().value == "false");
}

std::string bytes(std::size_t count) { return std::string(count, 'x'); }

// An answer whose blank line ends right before the byte at `end`.
std::string blankLineBefore(std::size_t end) { return bytes(end - 4) + "\r\n\r\n"; }

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

INSTANTIATE_TEST_SUITE_P(
    Answers, InfoAnswer,
    testing::Values(
        Answer{"HeaderOnly", "HTTP/1.1 200 OK\r\n\r\n", quoted("")},
        Answer{"NoHeader", "\r\n\r\nbody", quoted("body")},
        Answer{"StatusIsNotLookedAt", "HTTP/1.1 404 Not Found\r\n\r\ngone", quoted("gone")},
        Answer{"Rubbish", "\x01\xFF\r\n\r\n\xFE", quoted("\xFE")},
        Answer{"SecondBlankLineBelongsToTheBody", "a\r\n\r\nb\r\n\r\nc", quoted("b\r\n\r\nc")},
        Answer{"BodyEndsAtAZeroByte", std::string("a\r\n\r\nb\0c", 8), quoted("b")},
        Answer{"ZeroByteInTheHeader", std::string("a\0\r\n\r\nb", 7), "false"},
        Answer{"NoBlankLine", "HTTP/1.1 200 OK\r\n", "false"},
        Answer{"LineFeedsOnly", "HTTP/1.1 200 OK\n\nbody", "false"},
        Answer{"Length510", "h\r\n\r\n" + bytes(505), quoted(bytes(505))},
        Answer{"Length511", "h\r\n\r\n" + bytes(506), quoted(bytes(506))},
        Answer{"Length512", "h\r\n\r\n" + bytes(507), quoted(bytes(506))},
        Answer{"Length600", "h\r\n\r\n" + bytes(595), quoted(bytes(506))},
        Answer{"BlankLineAt505", blankLineBefore(505) + "abcdefgh", quoted("abcdef")},
        Answer{"BlankLineAt509", blankLineBefore(509) + "abcdefgh", quoted("ab")},
        Answer{"BlankLineAt510", blankLineBefore(510) + "abcdefgh", quoted("a")},
        Answer{"BlankLineAt511", blankLineBefore(511) + "abcdefgh", quoted("")},
        Answer{"BlankLineAt512", blankLineBefore(512) + "abcdefgh", "false"},
        Answer{"BlankLineAt515", blankLineBefore(515) + "abcdefgh", "false"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Scriptable, OnlyWhatTheFirstReadBringsCounts) {
    ScriptedService service({.requestSize = 93, .segments = {"HTTP/1.1 200 OK\r\n\r\n", "body"}});
    EXPECT_EQ(read("info"), "\"\"");
}

TEST_F(Scriptable, InfoIsFalseWhenNobodyListens) {
    EXPECT_EQ(read("info"), "false");
    EXPECT_EQ(openDescriptors(), m_descriptors);
    EXPECT_EQ(log.events(), failure("Cannot connect to nevo"));
}

TEST_F(Scriptable, InfoIsFalseWhenTheServiceClosesWithoutAnAnswer) {
    ScriptedService service({.requestSize = 93, .waitsForPeer = false});
    EXPECT_EQ(read("info"), "false");
    EXPECT_EQ(log.events(), failure("Cannot read response from nevo"));
    EXPECT_THAT(service.requests(), ElementsAre(kInfoRequest));
    EXPECT_EQ(openDescriptors(), m_descriptors);
}

TEST_F(Scriptable, InfoIsFalseWhenTheServiceResetsTheConnection) {
    ScriptedService service({.requestSize = 93, .resets = true});
    EXPECT_EQ(read("info"), "false");
    EXPECT_EQ(log.events(), failure("Cannot read response from nevo"));
}

TEST_F(Scriptable, InfoWorksWithoutALogObject) {
    removeLog();
    EXPECT_EQ(read("info"), "false");
    EXPECT_EQ(read("other"), "false");
    EXPECT_THAT(log.events(), IsEmpty());
}

}  // namespace
