#pragma once

#include "CString.h"

/// The documents in which a client describes its device before logon: an XML fragment, encoded as
/// Base64. Values are inserted as they are, without XML escaping.
///
/// Any thread may call these, as long as none sets `devInfoFormat` meanwhile. Nothing is reported.
/// Lack of memory comes out as `std::bad_alloc`, a text beyond 2147483647 bytes as
/// `std::length_error`.

/// A device. Optional texts that are empty are left out of the document.
struct UDeviceInfo {
    bool plugin = false;
    bool javascript = false;
    bool activex = false;
    CString cpu;       ///< empty: `GetProcessArchitecture()`
    CString platform;  ///< empty: `GetOSShortName()`
    // All that follow are optional.
    CString model;
    CString platform_version;
    CString imei;
    CString mac_address;
    CString unique_id;
    CString serial_number;
    CString reserved_id;  ///< not part of the document
    CString vendor_data;
    CString app_id;
    CString app_version;
    bool jailbreak = false;  ///< always in the document
};

/// The template of the desktop's document: up to ten "%s" for type, version, platform, cpu,
/// javascript, activex, landing URI, locked mode, host name and application, and "%%". A template
/// with anything else behind a percent sign, and null, is passed over for the default.
extern const char* devInfoFormat;

/// @return the encoded document of this desktop. Version "1.0" has a fixed one, whatever the rest.
/// @param scripting stands for JavaScript and for ActiveX, on purpose.
/// @param lockedMode null leaves that element empty, as null does for the texts behind it.
/// Null for version or type stands there as "(null)".
CString formatDevInfo(const char* version, const char* type, bool scripting, const bool* lockedMode,
                      const char* landingUri, const char* appId);

/// @return the encoded document of `device`, with this machine's host name where that can be read.
/// Null texts are as above.
CString formatDevInfo(const char* version, const char* type, const UDeviceInfo& device,
                      const char* landingUri);

/// @return the Base64 text of this machine's host name, or "" when it cannot be read.
CString SGetBase64UTF8HostName();

/// Puts this machine's host name into `buffer`, which has room for `size` bytes, and its length
/// into `size`. @return false, with `size` as it was, when the system does not give it.
bool GetUTF8HostName(unsigned char* buffer, unsigned long& size);

/// @return "MacOS".
CString GetOSShortName();

/// @return "x64", on every processor; kept so on purpose.
CString GetProcessArchitecture();
