// Lack of memory at every allocation of what makes texts and bytes: the result, or what the
// operation raises or answers instead, and nothing lost.

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "AutoMemory.h"
#include "ByteStream.h"
#include "CArray.h"
#include "CFIFOBuffer.h"
#include "CRFCBase64.h"
#include "ClientData.h"
#include "DeviceInfo.h"
#include "HexText.h"
#include "NumberText.h"
#include "PathText.h"
#include "StrFormat.h"
#include "SystemInfo.h"
#include "TextTools.h"
#include "UBlobList.h"
#include "UException.h"
#include "UStringList.h"
#include "UStrings.h"
#include "UrlText.h"
#include "createString.h"
#include "failing_memory.h"
#include "record_log.h"
#include "text_of.h"

namespace {

struct Operation {
    const char* name;
    void (*run)(CString& out);
};

// Runs `run` with each of its allocations failing in turn. @return how many there are.
int runWithoutMemory(const Operation& operation, bool mayRaise) {
    const RecordLog log(63);
    CString whole;
    operation.run(whole);
    for (int n = 1;; ++n) {
        CString out;
        bool isRaised = false;
        bool failed = false;
        {
            const FailingAllocation failing(n);
            try {
                operation.run(out);
            } catch (const std::bad_alloc&) {
                isRaised = true;
            } catch (const UException&) {
                isRaised = true;
            }
            failed = failing.happened();
        }
        EXPECT_TRUE((mayRaise && failed) || !isRaised) << "allocation " << n;
        if (!isRaised) {
            EXPECT_EQ(textOf(out), textOf(whole)) << "allocation " << n;
        }
        if (!failed || testing::Test::HasFailure()) return n - 1;
    }
}

class TextWithoutMemory : public testing::TestWithParam<Operation> {};

TEST_P(TextWithoutMemory, IsWholeOrRaised) { EXPECT_GT(runWithoutMemory(GetParam(), true), 0); }

CString longText() { return CString('x', 300); }

INSTANTIATE_TEST_SUITE_P(
    Operations, TextWithoutMemory,
    testing::Values(
        Operation{"SFormat", [](CString& s) { s = SFormat("%s-%5d", "text", 7); }},
        Operation{"CreateStringOfANumber", [](CString& s) { s = createString(-1234567LL); }},
        Operation{"CreateStringOfADouble", [](CString& s) { s = createString(1e300); }},
        Operation{"CreateStringOfText", [](CString& s) { s = createString("text", 3); }},
        Operation{"CreateStringOfWideText", [](CString& s) { s = createString(L"wide"); }},
        Operation{"CreateStringLimit", [](CString& s) { s = createStringLimit("text", 2); }},
        Operation{"AddToString", [](CString& s) { addToString(addToString(s, "a"), 5); }},
        Operation{"ToHex", [](CString& s) { s = toHex(255); }},
        Operation{"Sfmt", [](CString& s) { s = sfmt("%1 and %2", "one", 2); }},
        Operation{"UrlEncode", [](CString& s) { s = URLEncode("a b?" + longText()); }},
        Operation{"UrlDecode", [](CString& s) { s = URLDecode("a%20b%3F" + longText()); }},
        Operation{"UrlDecodeStandard",
                  [](CString& s) { s = URLDecode_s("a%20" + std::string(300, 'x')).c_str(); }},
        Operation{"ParseUrl",
                  [](CString& s) {
                      unsigned int scheme = 0;
                      unsigned int port = 0;
                      CString path;
                      ParseURL_BASIC("https://host.example:1/path", scheme, s, path, port, false);
                      s += path;
                  }},
        Operation{"BinToHex",
                  [](CString& s) {
                      const unsigned char bytes[40] = {1, 2, 3};
                      s = BinToHex(bytes, sizeof bytes, kHexDump);
                  }},
        Operation{"EncodeToHex", [](CString& s) { s = encodeToHex("text"); }},
        Operation{"Base64Encode", [](CString& s) { s = CRFCBase64::Encode("a longer text"); }},
        Operation{"Base64Decode", [](CString& s) { s = CRFCBase64::Decode("QUJDREVGR0g="); }},
        Operation{"Base64DecodeToBytes",
                  [](CString& s) {
                      CArray<unsigned char, unsigned char> bytes;
                      s = createString(CRFCBase64::Decode("QUJDREVGR0g=", bytes));
                  }},
        Operation{"ByteStream",
                  [](CString& s) {
                      AutoMemory bytes;
                      s = createString(StringToByteStream(longText(), bytes, kStreamWide));
                  }},
        Operation{"SplitString",
                  [](CString& s) {
                      CString left;
                      SplitString("a long left = right", left, s, '=');
                      s += left;
                  }},
        Operation{"ParseNameValue",
                  [](CString& s) {
                      CString value;
                      ParseNameValue(" name = value ", s, value);
                      s += value;
                  }},
        Operation{"Trim", [](CString& s) { s = Trim("((text))", '(', ')', 1); }},
        Operation{"StripCR", [](CString& s) { s = stripCR("text\r\n"); }},
        Operation{"ReplaceText", [](CString& s) { s = SReplace("text", "t", "tt"); }},
        Operation{"ReplaceWideText",
                  [](CString& s) {
                      wchar_t text[] = L"one two one";
                      s = createString(wcsreplace(text, L"one", L"1"));
                  }},
        Operation{"FileName", [](CString& s) { s = SGetFileName("/a/b/name", "default"); }},
        Operation{"AddTrailingSlash", [](CString& s) { s = addTrailingSlash("/a/b"); }},
        Operation{"Ip4ToString", [](CString& s) { s = IPv4toString(0x0100007F); }},
        Operation{"ErrorDescription", [](CString& s) { s = SGetErrorDescription(2); }},
        Operation{"EnvironmentVariable",
                  [](CString& s) { s = SGetEnvironmentVariable("PATH", "none"); }},
        Operation{"SystemInfo", [](CString& s) { s = SGetSystemInfo(0); }},
        Operation{"SignMessage", [](CString& s) { s = signMessage("message", "token"); }},
        Operation{"ClientData", [](CString& s) { s = formatClientData("a", "b", "c", "d"); }},
        Operation{"DeviceInfo",
                  [](CString& s) {
                      UDeviceInfo device;
                      device.model = "model";
                      s = formatDevInfo("2", "type", device, "uri");
                  }},
        Operation{"DesktopInfo",
                  [](CString& s) { s = formatDevInfo("2", "type", true, nullptr, "uri", "id"); }}),
    [](const auto& row) { return row.param.name; });

class GuardedWithoutMemory : public testing::TestWithParam<Operation> {};

TEST_P(GuardedWithoutMemory, NeverRaises) { EXPECT_GT(runWithoutMemory(GetParam(), false), 0); }

INSTANTIATE_TEST_SUITE_P(
    Operations, GuardedWithoutMemory,
    testing::Values(Operation{"ListAdd",
                              [](CString&) {
                                  UObject object;
                                  UList list;
                                  for (int i = 0; i < 3; ++i) {
                                      const int count = list.getCount();
                                      const int result = list.addObject(&object);
                                      EXPECT_EQ(result, result == -1 ? -1 : count + 1);
                                      EXPECT_EQ(list.getCount(), result == -1 ? count : count + 1);
                                  }
                                  list.removeObject(0);
                              }},
                    Operation{"StringsFromString",
                              [](CString&) {
                                  UStrings strings("one,two,three", ',', 0);
                                  EXPECT_GE(strings.getCount(), 2);
                                  strings.addItem("four");
                                  strings.removeItem(0);
                              }},
                    Operation{"StringListAdd",
                              [](CString&) {
                                  UStringList list;
                                  static const CString name("name");
                                  const int result = list.addItem(name, "value");
                                  EXPECT_EQ(list.findItem(name, 0), result == 0 ? 0 : -1);
                              }},
                    Operation{"BlobListAdd",
                              [](CString&) {
                                  UBlobList list;
                                  const bool isAdded = list.addItem("name", "value", 5);
                                  EXPECT_EQ(list.findItem("name"), isAdded ? 0 : -1);
                              }},
                    Operation{"RefusedNumbers",
                              [](CString&) {
                                  EXPECT_EQ(toInt("12x", 7), 7);
                                  EXPECT_EQ(toDWORD("x", 7), 7U);
                                  EXPECT_EQ(strIPtoDWORD("x", 7), 7U);
                              }},
                    Operation{"FifoInit",
                              [](CString&) {
                                  CFIFOBuffer fifo(10);
                                  unsigned char bytes[] = {'a', 'b', 'c'};
                                  const long pushed = fifo.push(bytes, 3);
                                  EXPECT_TRUE(pushed == 3 || pushed == -1);
                                  AutoMemory out;
                                  const int popped = fifo.popToAutoMemory(out);
                                  EXPECT_TRUE(popped == 3 || popped == -1 || popped == 0) << popped;
                              }}),
    [](const auto& row) { return row.param.name; });

// Bytes in an array.

TEST(ByteArrayWithoutMemory, RaisesBadAllocAndKeepsItsBytes) {
    CArray<unsigned char, unsigned char> array;
    array.SetSize(3, 8);
    array.SetAtGrow(2, 'c');
    for (const int newSize : {4, 100, 2000000000}) {
        const FailingAllocation failing(1);
        EXPECT_THROW(array.SetSize(newSize), std::bad_alloc);
        EXPECT_EQ(array.GetSize(), 3);
        EXPECT_EQ(array.GetData()[2], 'c');
    }
    const FailingAllocation failing(1);
    EXPECT_THROW(array.Add('d'), std::bad_alloc);
    EXPECT_EQ(array.GetSize(), 3);
}

}  // namespace
