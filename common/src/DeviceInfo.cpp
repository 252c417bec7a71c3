#include "DeviceInfo.h"

#include <unistd.h>

#include <array>
#include <cstring>

#include "CRFCBase64.h"
#include "StrFormat.h"

namespace {

// The answer to the first version of the protocol; its platform is kept as published.
constexpr const char* kFirstVersion = "1.0";
constexpr const char* kFirstDocument =
    "<agent_info><type>standalone</type><version>1.0</version><platform>Win32</platform>"
    "</agent_info>";

constexpr const char* kDesktopFormat =
    "<agent_info><type>%s</type><version>%s</version><platform>%s</platform><cpu>%s</cpu>"
    "<javascript>%s</javascript><activex>%s</activex><plugin>no</plugin>"
    "<landinguri>%s</landinguri><lockedmode>%s</lockedmode><hostname>%s</hostname>"
    "<app_id>%s</app_id></agent_info>";
constexpr int kDesktopTexts = 10;

constexpr unsigned long kHostNameRoom = 512;

bool isFirst(const char* version) {
    return version != nullptr && std::strcmp(version, kFirstVersion) == 0;
}

const char* yesOrNo(bool flag) { return flag ? "yes" : "no"; }

const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

// Whether `format` can be filled with `count` texts, or fewer, and nothing else.
bool takesTexts(const char* format, int count) {
    for (; (format = std::strchr(format, '%')) != nullptr; format += 2) {
        if (format[1] == 's') --count;
        if (count < 0 || (format[1] != 's' && format[1] != '%')) return false;
    }
    return true;
}

const char* desktopFormat() {
    const char* const format = devInfoFormat;
    return format != nullptr && takesTexts(format, kDesktopTexts) ? format : kDesktopFormat;
}

void addElement(CString& elements, const char* element, const CString& text) {
    if (!text.IsEmpty()) elements += StrFormat(element).arg(text);
}

CString extrasOf(const UDeviceInfo& device) {
    CString extras;
    addElement(extras, "<model>%1</model>", device.model);
    addElement(extras, "<platform_version>%1</platform_version>", device.platform_version);
    addElement(extras, "<imei>%1</imei>", device.imei);
    addElement(extras, "<mac_address>%1</mac_address>", device.mac_address);
    addElement(extras, "<unique_id>%1</unique_id>", device.unique_id);
    addElement(extras, "<serial_number>%1</serial_number>", device.serial_number);
    addElement(extras, "<vendor_data>%1</vendor_data>", device.vendor_data);
    addElement(extras, "<app_id>%1</app_id>", device.app_id);
    addElement(extras, "<app_version>%1</app_version>", device.app_version);
    addElement(extras, "<hostname>%1</hostname>", SGetBase64UTF8HostName());
    addElement(extras, "<jailbreak>%1</jailbreak>", yesOrNo(device.jailbreak));
    return extras;
}

}  // namespace

const char* devInfoFormat = kDesktopFormat;

CString formatDevInfo(const char* version, const char* type, bool scripting, const bool* lockedMode,
                      const char* landingUri, const char* appId) {
    if (isFirst(version)) return CRFCBase64::Encode(kFirstDocument);
    const CString platform = GetOSShortName();
    const CString cpu = GetProcessArchitecture();
    const CString hostName = SGetBase64UTF8HostName();
    CString document;
// The template was seen to take these texts and nothing else.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    document.Format(desktopFormat(), type, version, static_cast<const char*>(platform),
                    static_cast<const char*>(cpu), yesOrNo(scripting), yesOrNo(scripting),
                    orEmpty(landingUri), lockedMode == nullptr ? "" : yesOrNo(*lockedMode),
                    static_cast<const char*>(hostName), orEmpty(appId));
#pragma GCC diagnostic pop
    return CRFCBase64::Encode(document);
}

CString formatDevInfo(const char* version, const char* type, const UDeviceInfo& device,
                      const char* landingUri) {
    if (isFirst(version)) return CRFCBase64::Encode(kFirstDocument);
    const CString platform = device.platform.IsEmpty() ? GetOSShortName() : device.platform;
    const CString cpu = device.cpu.IsEmpty() ? GetProcessArchitecture() : device.cpu;
    const CString extras = extrasOf(device);
    CString document;
    document.Format(
        "<agent_info><type>%s</type><version>%s</version><platform>%s</platform><cpu>%s</cpu>"
        "<javascript>%s</javascript><activex>%s</activex><plugin>%s</plugin>"
        "<landinguri>%s</landinguri>%s</agent_info>",
        type, version, static_cast<const char*>(platform), static_cast<const char*>(cpu),
        yesOrNo(device.javascript), yesOrNo(device.activex), yesOrNo(device.plugin),
        orEmpty(landingUri), static_cast<const char*>(extras));
    return CRFCBase64::Encode(document);
}

CString SGetBase64UTF8HostName() {
    std::array<unsigned char, kHostNameRoom> name{};
    unsigned long size = name.size();
    CString text;
    if (GetUTF8HostName(name.data(), size)) {
        CRFCBase64::Encode(name.data(), static_cast<int>(size), text);
    }
    return text;
}

bool GetUTF8HostName(unsigned char* buffer, unsigned long& size) {
    auto* const name = reinterpret_cast<char*>(buffer);
    if (name == nullptr || gethostname(name, size) != 0) return false;
    // A name that fills the buffer may come without its end.
    size = strnlen(name, size);
    return true;
}

CString GetOSShortName() { return "MacOS"; }

CString GetProcessArchitecture() { return "x64"; }
