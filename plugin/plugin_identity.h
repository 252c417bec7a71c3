#pragma once

/// The plug-in's fixed names, as the browser, the log and the bundle's property list show them.
/// The build and scripts/check-bundle read them out of this file, so each stays one literal on one
/// line. The version text is literally this; no build replaces it.
namespace plugin_identity {
inline constexpr char kName[] = "Zerva Lanway plugin";
inline constexpr char kDescription[] = "Zerva Lanway plugin, Ver. ZERVA_VERSION";
inline constexpr char kVersion[] = "ZERVA_VERSION";
inline constexpr char kMimeDescription[] = "application/x-zerva-sslvpn:xvpn:Zerva Lanway plugin";
}  // namespace plugin_identity
