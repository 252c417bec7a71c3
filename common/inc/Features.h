#pragma once

/// What every client of the product has switched on. Fixed values, for any thread.
namespace zerva::Features {

namespace UserAgentString {

/// @return what the client calls itself in HTTP requests.
constexpr const char* GetUserAgentString() {
    return "Mozilla/5.0 (compatible; MSIE 10.0; Windows NT 6.1; Trident/6.0; Zerva Client)";
}

}  // namespace UserAgentString

/// @return whether the tunnel compresses what gains by it.
constexpr bool IsOptimizedTunnelCompressionOn() { return true; }

/// @return whether an idle TLS tunnel is probed.
constexpr bool IsTlsPingOn() { return true; }

/// @return how long a datagram may take to be sent.
constexpr unsigned int DTLSSendTimeout() { return 3000000; }

/// @return how long a datagram is waited for.
constexpr unsigned int DTLSRecvTimeout() { return 3000000; }

}  // namespace zerva::Features
