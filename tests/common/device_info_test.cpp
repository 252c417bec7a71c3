#include "DeviceInfo.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>

#include "CRFCBase64.h"
#include "on_threads.h"
#include "text_of.h"

namespace {

// The host name that the system gives; null: it gives none.
const char* hostName = "host.example";

}  // namespace

// The linker sends every call of gethostname here.
extern "C" int __wrap_gethostname(char* name, std::size_t size) {
    if (hostName == nullptr || size == 0) {
        errno = ENAMETOOLONG;
        return -1;
    }
    // Without its end where it does not fit, as systems may do it.
    strncpy(name, hostName, size);
    return 0;
}

namespace {

// Sets what the system gives while it lives.
class HostName {
  public:
    explicit HostName(const char* name) { hostName = name; }
    ~HostName() { hostName = "host.example"; }
    HostName(const HostName&) = delete;
    HostName& operator=(const HostName&) = delete;
};

const std::string firstDocument =
    "<agent_info><type>standalone</type><version>1.0</version><platform>Win32</platform>"
    "</agent_info>";
const std::string encodedHost = "aG9zdC5leGFtcGxl";

std::string document(const CString& encoded) { return textOf(CRFCBase64::Decode(encoded)); }

std::string desktop(bool scripting, const bool* lockedMode, const char* landingUri,
                    const char* appId) {
    return document(formatDevInfo("2.0", "plugin", scripting, lockedMode, landingUri, appId));
}

std::string deviceDocument(const UDeviceInfo& device) {
    return document(formatDevInfo("2.0", "mobile", device, "https://x/"));
}

// The text between the landing URI and the end.
std::string extrasOf(const UDeviceInfo& device) {
    const std::string text = deviceDocument(device);
    const std::string before = "</landinguri>";
    const std::size_t start = text.find(before) + before.size();
    return text.substr(start, text.find("</agent_info>") - start);
}

const std::string fixedExtras = "<hostname>" + encodedHost + "</hostname><jailbreak>no</jailbreak>";

TEST(DesktopDocument, HasEveryElementInItsPlace) {
    const bool locked = true;
    EXPECT_EQ(desktop(true, &locked, "https://portal/", "app"),
              "<agent_info><type>plugin</type><version>2.0</version><platform>MacOS</platform>"
              "<cpu>x64</cpu><javascript>yes</javascript><activex>yes</activex><plugin>no</plugin>"
              "<landinguri>https://portal/</landinguri><lockedmode>yes</lockedmode><hostname>" +
                  encodedHost + "</hostname><app_id>app</app_id></agent_info>");
}

TEST(DesktopDocument, ScriptingStandsForJavaScriptAndActiveX) {
    EXPECT_NE(desktop(false, nullptr, "", "")
                  .find("<javascript>no</javascript><activex>no</activex><plugin>no</plugin>"),
              std::string::npos);
}

TEST(DesktopDocument, LockedModeIsYesNoOrEmpty) {
    const bool locked = false;
    EXPECT_NE(desktop(true, &locked, "", "").find("<lockedmode>no</lockedmode>"),
              std::string::npos);
    EXPECT_NE(desktop(true, nullptr, "", "").find("<lockedmode></lockedmode>"), std::string::npos);
}

TEST(DesktopDocument, NullTextsLeaveTheirElementsEmpty) {
    const std::string text = desktop(true, nullptr, nullptr, nullptr);
    EXPECT_NE(text.find("<landinguri></landinguri>"), std::string::npos);
    EXPECT_NE(text.find("<app_id></app_id>"), std::string::npos);
}

TEST(DesktopDocument, NullVersionAndTypeAreWrittenAsFormattingWritesThem) {
    const std::string text =
        document(formatDevInfo(nullptr, nullptr, true, nullptr, nullptr, nullptr));
    EXPECT_EQ(text.find("<agent_info><type>(null)</type><version>(null)</version>"), 0U);
}

TEST(DesktopDocument, HostNameIsEmptyWhenItCannotBeRead) {
    const HostName none(nullptr);
    EXPECT_NE(desktop(true, nullptr, "", "").find("<hostname></hostname>"), std::string::npos);
}

TEST(DesktopDocument, FirstVersionIsFixedWhateverTheRest) {
    const bool locked = true;
    EXPECT_EQ(document(formatDevInfo("1.0", "plugin", true, &locked, "https://x/", "app")),
              firstDocument);
    EXPECT_EQ(document(formatDevInfo("1.0", nullptr, false, nullptr, nullptr, nullptr)),
              firstDocument);
}

TEST(DesktopDocument, OtherVersionsAreNotTheFirst) {
    for (const char* version : {"", "1", "1.0 ", "1.00", "01.0", "2.0"}) {
        EXPECT_NE(document(formatDevInfo(version, "t", true, nullptr, "", "")), firstDocument);
        EXPECT_NE(document(formatDevInfo(version, "t", UDeviceInfo(), "")), firstDocument);
    }
}

TEST(DesktopDocument, ValuesAreNotEscaped) {
    EXPECT_NE(desktop(true, nullptr, "<&>\"%s", "%d").find("<landinguri><&>\"%s</landinguri>"),
              std::string::npos);
}

// Another template while it lives.
class Template {
  public:
    explicit Template(const char* text) { devInfoFormat = text; }
    ~Template() { devInfoFormat = m_before; }
    Template(const Template&) = delete;
    Template& operator=(const Template&) = delete;

  private:
    const char* const m_before = devInfoFormat;
};

TEST(DesktopTemplate, IsThePublishedOneByDefault) {
    EXPECT_STREQ(
        devInfoFormat,
        "<agent_info><type>%s</type><version>%s</version><platform>%s</platform><cpu>%s</cpu>"
        "<javascript>%s</javascript><activex>%s</activex><plugin>no</plugin>"
        "<landinguri>%s</landinguri><lockedmode>%s</lockedmode><hostname>%s</hostname>"
        "<app_id>%s</app_id></agent_info>");
}

TEST(DesktopTemplate, CanBeReplaced) {
    const Template other("%s/%s 100%% %s");
    EXPECT_EQ(desktop(true, nullptr, "", ""), "plugin/2.0 100% MacOS");
}

TEST(DesktopTemplate, OneThatTakesOtherThingsThanTheTextsIsPassedOver) {
    for (const char* text : {"%d", "%n", "%", "%s%", "%5s", "%ls", "%s%s%s%s%s%s%s%s%s%s%s",
                             static_cast<const char*>(nullptr)}) {
        const Template other(text);
        EXPECT_EQ(desktop(true, nullptr, "", "").find("<agent_info><type>plugin</type>"), 0U);
    }
}

TEST(DeviceDocument, OfAnEmptyRecordHasOnlyWhatIsAlwaysThere) {
    EXPECT_EQ(document(formatDevInfo("2.0", "mobile", UDeviceInfo(), "https://x/")),
              "<agent_info><type>mobile</type><version>2.0</version><platform>MacOS</platform>"
              "<cpu>x64</cpu><javascript>no</javascript><activex>no</activex><plugin>no</plugin>"
              "<landinguri>https://x/</landinguri>" +
                  fixedExtras + "</agent_info>");
}

TEST(DeviceDocument, OfAFullRecordHasEveryElementInOrder) {
    // Named in the order of their declaration, or this does not compile.
    const UDeviceInfo device{.plugin = true,
                             .javascript = true,
                             .activex = true,
                             .cpu = "arm",
                             .platform = "iOS",
                             .model = "M",
                             .platform_version = "PV",
                             .imei = "I",
                             .mac_address = "MA",
                             .unique_id = "U",
                             .serial_number = "SN",
                             .reserved_id = "not in the document",
                             .vendor_data = "VD",
                             .app_id = "AI",
                             .app_version = "AV",
                             .jailbreak = true};
    EXPECT_EQ(
        deviceDocument(device),
        "<agent_info><type>mobile</type><version>2.0</version><platform>iOS</platform>"
        "<cpu>arm</cpu><javascript>yes</javascript><activex>yes</activex><plugin>yes</plugin>"
        "<landinguri>https://x/</landinguri><model>M</model>"
        "<platform_version>PV</platform_version><imei>I</imei><mac_address>MA</mac_address>"
        "<unique_id>U</unique_id><serial_number>SN</serial_number><vendor_data>VD</vendor_data>"
        "<app_id>AI</app_id><app_version>AV</app_version><hostname>" +
            encodedHost + "</hostname><jailbreak>yes</jailbreak></agent_info>");
}

struct OptionalText {
    const char* element;
    CString UDeviceInfo::*field;
};
class DeviceDocumentText : public testing::TestWithParam<OptionalText> {};

TEST_P(DeviceDocumentText, StandsInItsElementUnescapedWhenItIsNotEmpty) {
    UDeviceInfo device;
    device.*GetParam().field = "<%1&%s>";
    const std::string name = GetParam().element;
    EXPECT_EQ(extrasOf(device), "<" + name + "><%1&%s></" + name + ">" + fixedExtras);
}

INSTANTIATE_TEST_SUITE_P(Optional, DeviceDocumentText,
                         testing::Values(OptionalText{"model", &UDeviceInfo::model},
                                         OptionalText{"platform_version",
                                                      &UDeviceInfo::platform_version},
                                         OptionalText{"imei", &UDeviceInfo::imei},
                                         OptionalText{"mac_address", &UDeviceInfo::mac_address},
                                         OptionalText{"unique_id", &UDeviceInfo::unique_id},
                                         OptionalText{"serial_number", &UDeviceInfo::serial_number},
                                         OptionalText{"vendor_data", &UDeviceInfo::vendor_data},
                                         OptionalText{"app_id", &UDeviceInfo::app_id},
                                         OptionalText{"app_version", &UDeviceInfo::app_version}),
                         [](const auto& row) { return std::string(row.param.element); });

struct Flag {
    const char* element;
    bool UDeviceInfo::*field;
};
class DeviceDocumentFlag : public testing::TestWithParam<Flag> {};

TEST_P(DeviceDocumentFlag, HasItsOwnElement) {
    UDeviceInfo device;
    device.*GetParam().field = true;
    const std::string name = GetParam().element;
    const std::string text = deviceDocument(device);
    EXPECT_NE(text.find("<" + name + ">yes</" + name + ">"), std::string::npos) << text;
    EXPECT_EQ(text.find(">yes<"), text.rfind(">yes<")) << text;
}

INSTANTIATE_TEST_SUITE_P(Each, DeviceDocumentFlag,
                         testing::Values(Flag{"plugin", &UDeviceInfo::plugin},
                                         Flag{"javascript", &UDeviceInfo::javascript},
                                         Flag{"activex", &UDeviceInfo::activex},
                                         Flag{"jailbreak", &UDeviceInfo::jailbreak}),
                         [](const auto& row) { return std::string(row.param.element); });

TEST(DeviceDocument, HasNoHostNameWhenThatCannotBeRead) {
    const HostName none(nullptr);
    EXPECT_EQ(extrasOf(UDeviceInfo()), "<jailbreak>no</jailbreak>");
}

TEST(DeviceDocument, FirstVersionIsFixedWhateverTheRest) {
    UDeviceInfo device;
    device.model = "M";
    EXPECT_EQ(document(formatDevInfo("1.0", "mobile", device, "https://x/")), firstDocument);
}

TEST(DeviceDocument, NullTexts) {
    EXPECT_NE(document(formatDevInfo("2.0", "t", UDeviceInfo(), nullptr))
                  .find("<landinguri></landinguri>"),
              std::string::npos);
    EXPECT_EQ(document(formatDevInfo(nullptr, nullptr, UDeviceInfo(), nullptr))
                  .find("<agent_info><type>(null)</type><version>(null)</version>"),
              0U);
}

TEST(DeviceDocument, LongTextsAreWhole) {
    UDeviceInfo device;
    device.platform = CString('p', 70000);
    device.vendor_data = CString('v', 70000);
    const std::string uri(70000, 'u');
    EXPECT_EQ(document(formatDevInfo("2.0", "t", device, uri.c_str())),
              "<agent_info><type>t</type><version>2.0</version><platform>" +
                  std::string(70000, 'p') +
                  "</platform><cpu>x64</cpu><javascript>no</javascript><activex>no</activex>"
                  "<plugin>no</plugin><landinguri>" +
                  uri + "</landinguri><vendor_data>" + std::string(70000, 'v') + "</vendor_data>" +
                  fixedExtras + "</agent_info>");
}

TEST(DeviceDocument, ManyThreadsMakeTheirOwn) {
    UDeviceInfo device;
    device.model = "M";
    const bool locked = true;
    const CString expected = formatDevInfo("2.0", "t", device, "u");
    const CString desktopExpected = formatDevInfo("2.0", "t", true, &locked, "u", "a");
    std::atomic<int> right{0};
    onThreads(4, [&](int) {
        for (int round = 0; round < 100; ++round) {
            if (formatDevInfo("2.0", "t", device, "u") == expected) ++right;
            if (formatDevInfo("2.0", "t", true, &locked, "u", "a") == desktopExpected) ++right;
        }
    });
    EXPECT_EQ(right, 800);
}

TEST(HostNameText, IsTheEncodedNameOrEmpty) {
    EXPECT_EQ(textOf(SGetBase64UTF8HostName()), encodedHost);
    const HostName none(nullptr);
    EXPECT_EQ(textOf(SGetBase64UTF8HostName()), "");
}

TEST(HostNameText, ANameThatFillsTheBufferIsWhole) {
    const std::string name(600, 'n');
    const HostName tooLong(name.c_str());
    EXPECT_EQ(textOf(CRFCBase64::Decode(SGetBase64UTF8HostName())), name.substr(0, 512));
}

TEST(HostNameBytes, AreTheNameAndItsLength) {
    unsigned char buffer[64] = {};
    unsigned long size = sizeof buffer;
    EXPECT_TRUE(GetUTF8HostName(buffer, size));
    EXPECT_EQ(size, 12U);
    EXPECT_STREQ(reinterpret_cast<const char*>(buffer), "host.example");
}

TEST(HostNameBytes, SizeStaysWhenTheNameCannotBeRead) {
    unsigned char buffer[64];
    unsigned long size = sizeof buffer;
    {
        const HostName none(nullptr);
        EXPECT_FALSE(GetUTF8HostName(buffer, size));
    }
    EXPECT_FALSE(GetUTF8HostName(nullptr, size));
    EXPECT_EQ(size, sizeof buffer);
    size = 0;
    EXPECT_FALSE(GetUTF8HostName(buffer, size));
    EXPECT_EQ(size, 0U);
}

TEST(SystemNames, AreFixed) {
    EXPECT_EQ(GetOSShortName(), "MacOS");
    EXPECT_EQ(GetProcessArchitecture(), "x64");
}

}  // namespace
