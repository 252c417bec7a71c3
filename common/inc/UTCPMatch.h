#pragma once

#include "UDWORDMatch.h"
#include "UIPSubnetMatch.h"

struct UEndpointText;

/// Matches "address:port" by a subnet alone ("10.0.0.0/8") or by a subnet and a port or range of
/// ports ("10.0.0.0/8:1000-2000"). A colon in a pattern promises a port: without one the port is
/// missing. Ports go up to 65535. Colons beside others, or at the ends, do not count; a candidate
/// has exactly two parts, whatever the second one is when the pattern has no port.
class UTCPMatch final : public URootMatch {
  public:
    /// No pattern.
    UTCPMatch();
    /// Raises `UException` for what is no pattern.
    explicit UTCPMatch(const char* pattern);

    /// Splits a pattern into the dotted texts of its address, which is not masked, and its netmask,
    /// and its port, which is not looked at, or "" without one. Raises `UException`, with nothing
    /// stored, when it has more than two parts or the first is no subnet.
    static void parse(const CString& pattern, CString& address, CString& netmask, CString& port);

    int setPattern(const char* text) override { return _setPattern(text); }
    const char* getPattern() const override { return m_pattern; }
    bool match(const char* text) const override;
    /// @return false: no number is an endpoint.
    bool matchAsDWORD(unsigned int /*value*/) const override { return false; }
    /// Writes a pattern as "address/netmask:port", both dotted; without ":port" when it has none.
    /// The address is not masked. What `setPattern` would refuse is a failure.
    int normalize(const char* text, CString& out, char delimiter) const override;
    CString toString() const override { return m_pattern; }

  private:
    friend class UExpressionMatch;

    int _setPattern(const char* text);
    bool MatchEndpoint(const UEndpointText& endpoint) const;

    CString m_pattern;
    int m_state = -1;  // 1: a network alone; 2: a network and a port
    UDWORDMatch m_port;
    UIPSubnetMatch m_network;
};
