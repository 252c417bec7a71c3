#pragma once

#include <arpa/inet.h>

#include <cstdio>
#include <new>

#include "CString.h"
#include "NumberText.h"
#include "URaise.h"
#include "UStrings.h"
#include "m_type_conversion.h"

/// IPv4 addresses, netmasks and subnets as values: a number of 32 bits with the first octet in its
/// highest byte. Each object belongs to one thread at a time.
///
/// A text that is none raises `UException` with code -1, and lack of memory `std::bad_alloc`;
/// nothing is changed then.

/// An IPv4 address.
class UIPv4Address {
  public:
    /// @return the address that `text` is by `strIPtoDWORD`: four numbers of up to three digits, of
    /// which only the low bytes count.
    static unsigned int parse(const CString& text) {
        bool ok = false;
        const unsigned int value = strIPtoDWORD(text, 0, &ok);
        if (!ok) URaise("UIPv4Address::parse()", "invalid value", text);
        return value;
    }

    /// Stores what `parse` gives.
    UIPv4Address& operator=(const CString& text) {
        m_value = parse(text);
        return *this;
    }

    /// @return the address; 0 until one is stored.
    unsigned int getValue() const { return m_value; }

    /// @return the dotted text.
    CString toString() const { return IPv4toString(htonl(m_value)); }

  private:
    unsigned int m_value = 0;
};

/// An IPv4 netmask: ones from the top, then zeros; its text is that or their number (RFC 4632).
class UIPv4Netmask {
  public:
    /// @return the mask that `text` is: a prefix length of one or two characters, or dotted as an
    /// address, with white space around it or not. 0 ones and 32 are masks, too.
    static unsigned int parse(const CString& text) {
        CString mask(text);
        mask.TrimLeft();
        mask.TrimRight();
        int prefixLength = 0;
        char rest[20];
        if (std::sscanf(mask, "%2d%9s", &prefixLength, rest) == 1) {
            return fromCiscoValue(IntToBYTE(prefixLength));
        }
        bool ok = false;
        const unsigned int value = strIPtoDWORD(mask, 0, &ok);
        if (!ok || !isContiguous(value)) URaise("UIPv4Netmask::parse()", "invalid value", text);
        return value;
    }

    /// @return the mask of `prefixLength` ones, of which there are at most 32.
    static unsigned int fromCiscoValue(unsigned char prefixLength) {
        if (prefixLength > 32) {
            URaise("UIPv4Netmask::fromCiscoValue()", "invalid value", prefixLength);
        }
        return prefixLength == 0 ? 0 : ~0U << (32 - prefixLength);
    }

    /// Stores what `parse` gives.
    UIPv4Netmask& operator=(const CString& text) {
        m_value = parse(text);
        return *this;
    }

    /// @return the mask; 0 until one is stored.
    unsigned int getValue() const { return m_value; }

    /// @return the dotted text.
    CString toString() const { return IPv4toString(htonl(m_value)); }

  private:
    static bool isContiguous(unsigned int mask) { return (~mask & (0U - mask)) == 0; }

    unsigned int m_value = 0;
};

/// A subnet: an address, kept as it was written, and a netmask.
template <class Address, class Netmask>
class UIPvXSubnet {
  public:
    /// The subnet that `text` is: an address and a netmask with a "/" between them. Slashes around
    /// and beside that one do not count.
    explicit UIPvXSubnet(const CString& text) { _parse(text); }

    /// @return the two parts, owned by the object.
    const Address& getSubnet() const { return m_subnet; }
    const Netmask& getNetmask() const { return m_netmask; }

  private:
    void _parse(const CString& text) {
        UStrings parts;
        // A piece left out for lack of memory would make two parts of three.
        if (parts.fromString(text, '/', 0) != 0) throw std::bad_alloc();
        if (parts.getCount() != 2) URaise("UIPvXSubnet::parse()", "invalid subnet", text);
        m_subnet = CString(parts.getItem(0));
        m_netmask = CString(parts.getItem(1));
    }

    Address m_subnet;
    Netmask m_netmask;
};

using UIPv4Subnet = UIPvXSubnet<UIPv4Address, UIPv4Netmask>;
