#pragma once

#include <initializer_list>
#include <string_view>

#include "CString.h"
#include "notify_data.h"
#include "plugin_instance.h"

// Making a URL for the browser and handing it over.

/// The page's function that takes texts from the service and from the plug-in.
inline constexpr char kCallPage[] = "javascript:c_addcomm('";
inline constexpr char kCallPageEnd[] = "')";

/// Puts pieces together into `url`, keeping its block when they fit. No piece may lie in `url`.
/// Throws std::length_error beyond what a CString holds.
void assemble(CString& url, std::initializer_list<std::string_view> pieces);

/// The whole text of a string, embedded NULs included.
inline std::string_view view(const CString& text) {
    return {text, static_cast<size_t>(text.GetLength())};
}

/// Logs that the browser refused `url`, under `caller`, a function's name; nothing if `result` says
/// that it took it.
void logRefusal(NPError result, const char* caller, const char* url);

/// Asks the browser for the URL in the instance's `urlBuffer`, tagged with `notifyData`. A refusal
/// is logged under `caller`.
///
/// The page may remove the plug-in meanwhile: do not touch the record after this call unless its
/// handle does not point at it yet.
/// @return the browser's error number, 0 when it took the request.
NPError requestUrlBuffer(const nsPluginInstance& record, streamData* notifyData,
                         const char* caller);
