#pragma once

// What the plug-in and the VPN service program `nevo` agree on: where the service lives, where it
// listens, and the texts of the requests. Nothing here can be configured.

namespace nevo {

inline constexpr char kPidFile[] = "/Library/Application Support/Zerva/nevo/var/run/nevo.pid";
inline constexpr char kProgram[] =
    "/Library/Internet Plug-Ins/Zerva SSL VPN Plugin.plugin/Contents/Helpers/nevo";

/// The short command name that marks the service's process.
inline constexpr char kCommandName[] = "nevo";

/// The program's exit status that means: not installed.
inline constexpr int kExitNotInstalled = 2;

inline constexpr char kAddress[] = "127.0.0.1";
inline constexpr unsigned short kPort = 44444;

inline constexpr char kUrl[] = "http://127.0.0.1:44444/vpn.php";
inline constexpr char kInfoQuery[] = "?INFO";
inline constexpr char kConnectQuery[] = "?CONNECT";

/// The command sent when the page has nothing to say.
inline constexpr char kInfoCommand[] = "INFO";

/// Requests that the plug-in writes to a socket itself. They go out with zero bytes behind them,
/// which the service tolerates: `kInfoRequest` as a block of 1000 bytes, `kScriptInfoRequest` with
/// its terminator.
inline constexpr char kInfoRequest[] =
    "GET /vpn.php?INFO HTTP/1.1\r\nHOST: 127.0.0.1:44444\r\nAccept: */*\r\n\r\n";
inline constexpr char kScriptInfoRequest[] =
    "GET /vpn.php?INFO&JS HTTP/1.1\r\nHOST: 127.0.0.1:44444\r\nAccept: */*\r\n"
    "Scriptable-request: 1\r\n\r\n";

/// What ends an HTTP header.
inline constexpr char kBlankLine[] = "\r\n\r\n";

}  // namespace nevo
