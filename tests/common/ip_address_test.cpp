#include "UIPAddress.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "UException.h"
#include "failing_memory.h"
#include "record_log.h"
#include "row_name.h"
#include "text_of.h"

namespace {

// What parsing `text` as a T raises; "" when it raises nothing.
template <class T>
std::string raisedBy(const CString& text) {
    try {
        T::parse(text);
    } catch (const UException& e) {
        EXPECT_EQ(e.GetErrorCode(), -1);
        EXPECT_STREQ(e.GetFileName(), "/UIPAddress.h");
        return std::string(e.GetFunctionName()) + " " + e.GetErrorMessage();
    }
    return "";
}

TEST(Ipv4Address, IsZeroUntilOneIsStored) {
    const UIPv4Address address;
    EXPECT_EQ(address.getValue(), 0u);
    EXPECT_EQ(textOf(address.toString()), "0.0.0.0");
}

TEST(Ipv4Address, HoldsTheFirstOctetInItsHighestByte) {
    UIPv4Address address;
    address = CString("10.1.2.3");
    EXPECT_EQ(address.getValue(), 0x0a010203u);
    EXPECT_EQ(textOf(address.toString()), "10.1.2.3");
}

TEST(Ipv4Address, TakesEveryThreeDigitNumberInEachPlaceByItsLowByte) {
    for (unsigned int number = 0; number < 1000; ++number) {
        for (unsigned int place = 0; place < 4; ++place) {
            char digits[4];
            snprintf(digits, sizeof digits, "%03u", number);
            std::string text;
            for (unsigned int i = 0; i < 4; ++i) {
                if (i > 0) text += '.';
                text += i == place ? digits : "7";
            }
            const unsigned int shift = 24 - 8 * place;
            const unsigned int value = (0x07070707u & ~(255u << shift)) | number % 256 << shift;
            UIPv4Address address;
            address = CString(text.c_str());
            ASSERT_EQ(address.getValue(), value) << text;
            // What is printed is read as the same address.
            ASSERT_EQ(UIPv4Address::parse(address.toString()), value) << text;
        }
    }
}

TEST(Ipv4Address, WhatIsNoneIsInvalidAndChangesNothing) {
    UIPv4Address address;
    address = CString("1.2.3.4");
    for (const std::string text : {"", " ", "1.2.3", "1.2.3.4.5", "1.2.3.4x", "a.b.c.d", "/", "...",
                                   "4294967296", "1.2.3.4567", "99999999999.1.1.1"}) {
        const CString given(text.c_str());
        EXPECT_EQ(raisedBy<UIPv4Address>(given),
                  "UIPv4Address::parse() EXCEPTION - invalid value, " + text);
        EXPECT_THROW(address = given, UException) << text;
    }
    EXPECT_EQ(address.getValue(), 0x01020304u);
}

TEST(Ipv4Address, FailureIsLoggedAsItIsRaised) {
    const RecordLog log;
    EXPECT_THROW(UIPv4Address::parse("1.2.3"), UException);
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              "1, /UIPAddress.h, LINE, UIPv4Address::parse(), EXCEPTION - invalid value, 1.2.3\n");
}

TEST(Ipv4Netmask, IsZeroUntilOneIsStored) {
    const UIPv4Netmask mask;
    EXPECT_EQ(mask.getValue(), 0u);
    EXPECT_EQ(textOf(mask.toString()), "0.0.0.0");
}

// The mask of `length` ones, bit by bit.
unsigned int maskOf(int length) {
    unsigned int mask = 0;
    for (int i = 0; i < 32; ++i) mask = mask * 2 + (i < length ? 1 : 0);
    return mask;
}

TEST(Ipv4Netmask, IsAPrefixLengthOrTheSameMaskDotted) {
    for (int length = 0; length <= 32; ++length) {
        const std::string number = std::to_string(length);
        UIPv4Netmask mask;
        mask = CString(number.c_str());
        EXPECT_EQ(mask.getValue(), maskOf(length)) << length;
        EXPECT_EQ(UIPv4Netmask::fromCiscoValue(static_cast<unsigned char>(length)), maskOf(length));
        EXPECT_EQ(UIPv4Netmask::parse(mask.toString()), maskOf(length)) << length;
    }
    EXPECT_EQ(UIPv4Netmask::parse("24"), 4294967040u);
    EXPECT_EQ(UIPv4Netmask::parse("255.255.255.0"), 4294967040u);
}

TEST(Ipv4Netmask, MayHaveWhiteSpaceAroundIt) {
    EXPECT_EQ(UIPv4Netmask::parse("  24  "), maskOf(24));
    EXPECT_EQ(UIPv4Netmask::parse("\t24\r\n"), maskOf(24));
    EXPECT_EQ(UIPv4Netmask::parse(" 255.0.0.0 "), maskOf(8));
}

TEST(Ipv4Netmask, TakesOneOrTwoDigitsHoweverTheyAreWritten) {
    EXPECT_EQ(UIPv4Netmask::parse("8"), maskOf(8));
    EXPECT_EQ(UIPv4Netmask::parse("08"), maskOf(8));
    EXPECT_EQ(UIPv4Netmask::parse("+8"), maskOf(8));
}

TEST(Ipv4Netmask, OfAnyBitPatternIsValidOnlyWhenItsOnesComeFirst) {
    for (unsigned int place = 0; place < 4; ++place) {
        for (unsigned int byte = 0; byte < 256; ++byte) {
            // Ones before the byte, zeros behind it.
            const unsigned int shift = 24 - 8 * place;
            const unsigned int mask = maskOf(static_cast<int>(8 * place)) | byte << shift;
            bool isContiguous = false;
            for (int length = 0; length <= 32; ++length) isContiguous |= mask == maskOf(length);
            const CString text = IPv4toString(htonl(mask));
            if (isContiguous) {
                EXPECT_EQ(UIPv4Netmask::parse(text), mask) << text;
            } else {
                EXPECT_EQ(raisedBy<UIPv4Netmask>(text),
                          "UIPv4Netmask::parse() EXCEPTION - invalid value, " + textOf(text));
            }
        }
    }
}

TEST(Ipv4Netmask, WhatIsNoneIsInvalidAndChangesNothing) {
    UIPv4Netmask mask;
    mask = CString("16");
    for (const std::string text : {"", "  ", "255.0.255.0", "0.0.0.255", "100", "024", "2 4", "-80",
                                   "-", "0x18", "24x", "300.0.0.0", "255.255.255", "/24"}) {
        const CString given(text.c_str());
        EXPECT_EQ(raisedBy<UIPv4Netmask>(given),
                  "UIPv4Netmask::parse() EXCEPTION - invalid value, " + text);
        EXPECT_THROW(mask = given, UException) << text;
    }
    EXPECT_EQ(mask.getValue(), maskOf(16));
}

TEST(Ipv4Netmask, OfMoreThan32OnesIsInvalid) {
    for (const std::string text : {"33", "99"}) {
        EXPECT_EQ(raisedBy<UIPv4Netmask>(text.c_str()),
                  "UIPv4Netmask::fromCiscoValue() EXCEPTION - invalid value, " + text);
    }
    for (int length = 33; length < 256; ++length) {
        EXPECT_THROW(UIPv4Netmask::fromCiscoValue(static_cast<unsigned char>(length)), UException);
    }
}

TEST(Ipv4Netmask, OfLessThanNoOnesIsRefusedAsItIsNarrowed) {
    try {
        UIPv4Netmask::parse("-8");
        FAIL();
    } catch (const UException& e) {
        EXPECT_STREQ(e.GetFunctionName(), "IntToDWORD()");
        EXPECT_STREQ(e.GetErrorMessage(), "EXCEPTION - IntToDWORD(), input value is negative");
    }
}

TEST(Ipv4Subnet, HoldsTheAddressAsWrittenAndTheNetmask) {
    const UIPvXSubnet<UIPv4Address, UIPv4Netmask> subnet("10.1.2.3/8");
    EXPECT_EQ(subnet.getSubnet().getValue(), 0x0a010203u);
    EXPECT_EQ(subnet.getNetmask().getValue(), 0xff000000u);
    EXPECT_EQ(textOf(subnet.getSubnet().toString()), "10.1.2.3");
    EXPECT_EQ(textOf(subnet.getNetmask().toString()), "255.0.0.0");
}

TEST(Ipv4Subnet, IgnoresFurtherSlashesThatHaveNothingBetweenThem) {
    for (const char* text : {"10.0.0.0/8", "/10.0.0.0/8", "10.0.0.0//8", "10.0.0.0/8/"}) {
        const UIPv4Subnet subnet(text);
        EXPECT_EQ(subnet.getSubnet().getValue(), 0x0a000000u) << text;
        EXPECT_EQ(subnet.getNetmask().getValue(), 0xff000000u) << text;
    }
}

struct BadSubnet {
    const char* rule;
    const char* text;
    const char* raised;
};
class SubnetThatIsNone : public testing::TestWithParam<BadSubnet> {};

TEST_P(SubnetThatIsNone, RaisesWhatIsWrongWithIt) {
    const RecordLog log;
    EXPECT_THROW(UIPv4Subnet subnet(GetParam().text), UException);
    ASSERT_EQ(log.items().size(), 1u);
    EXPECT_EQ(withoutLine(log.items()[0]),
              std::string("1, /UIPAddress.h, LINE, ") + GetParam().raised + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SubnetThatIsNone,
    testing::Values(
        BadSubnet{"NoSlash", "10.1.2.3",
                  "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, 10.1.2.3"},
        BadSubnet{"ThreeParts", "10.1.2.3/8/9",
                  "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, 10.1.2.3/8/9"},
        BadSubnet{"NoAddress", "/8", "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, /8"},
        BadSubnet{"NoNetmask", "1.2.3.4/",
                  "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, 1.2.3.4/"},
        BadSubnet{"Nothing", "", "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, "},
        BadSubnet{"Null", nullptr, "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, "},
        BadSubnet{"Slashes", "///", "UIPvXSubnet::parse(), EXCEPTION - invalid subnet, ///"},
        BadSubnet{"BadAddress", "10.1.2/8",
                  "UIPv4Address::parse(), EXCEPTION - invalid value, 10.1.2"},
        BadSubnet{"BadNetmask", "10.1.2.3/255.0.255.0",
                  "UIPv4Netmask::parse(), EXCEPTION - invalid value, 255.0.255.0"},
        BadSubnet{"LongPrefix", "10.1.2.3/33",
                  "UIPv4Netmask::fromCiscoValue(), EXCEPTION - invalid value, 33"}),
    nameOfRow);

TEST(Ipv4Subnet, WithoutMemoryDoesNotTakeThreePartsForTwo) {
    const CString text("10.1.2.3/8/16");
    failingEach(
        [&] {
            try {
                const UIPv4Subnet subnet(text);
                ADD_FAILURE() << "nothing raised";
            } catch (const UException&) {
            } catch (const std::bad_alloc&) {
            }
        },
        [](bool) {});
}

TEST(Ipv4Subnet, WithoutMemoryIsRightOrRaised) {
    failingEach(
        [] {
            try {
                const UIPv4Subnet subnet("10.1.2.3/255.0.0.0");
                EXPECT_EQ(subnet.getSubnet().getValue(), 0x0a010203u);
                EXPECT_EQ(subnet.getNetmask().getValue(), 0xff000000u);
            } catch (const std::bad_alloc&) {
            }
        },
        [](bool) {});
}

TEST(Ipv4Subnet, MegabytesThatAreNoneAreRefused) {
    const std::string digits(1 << 20, '1');
    const std::string blanks(1 << 20, ' ');
    EXPECT_THROW(UIPv4Subnet subnet((digits + "/8").c_str()), UException);
    EXPECT_THROW(UIPv4Subnet subnet(("10.0.0.0/" + digits).c_str()), UException);
    const UIPv4Subnet subnet(("10.0.0.0/" + blanks + "8" + blanks).c_str());
    EXPECT_EQ(subnet.getNetmask().getValue(), 0xff000000u);
}

}  // namespace
