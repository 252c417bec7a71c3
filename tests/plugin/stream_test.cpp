#include <climits>

#include "notify_data.h"
#include "plugin_test.h"

// The stream callbacks of one instance, each alone.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Stream : public PluginTest {
  protected:
    Stream() {
        EXPECT_EQ(page.create(), 0);
        log.clear();
        browser.calls.clear();
        stream.url = "http://here/";
        stream.notifyData = &notify;
    }

    void setType(int type) { notify.type = type; }
    // Gives the instance a text that an earlier stream has brought.
    void setData(const char* text) {
        streamData earlier{};
        earlier.type = 3;
        page.deliverStream({page.handle(), "http://earlier/", nullptr, &earlier, false}, text);
        log.clear();
    }

    std::string address() const {
        char text[32];
        snprintf(text, sizeof text, "0x%x",
                 static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(&stream)));
        return text;
    }
    NPError newStream() {
        char type[] = "text/html";
        return plugin.newstream(page.handle(), type, &stream, 0, &mode);
    }
    int32 write(int32 offset, int32 length, const char* bytes) {
        return plugin.write(page.handle(), &stream, offset, length, const_cast<char*>(bytes));
    }

    Embedding page{plugin};
    streamData notify{};
    NPStream stream{};
    uint16 mode = 0;
};

// NewStream.

class StreamOfType : public Stream, public testing::WithParamInterface<int> {
  protected:
    StreamOfType() { setType(GetParam()); }
    std::string type() const { return std::to_string(GetParam()); }
    bool isKnown() const { return GetParam() >= 1 && GetParam() <= 3; }
    bool isCollected() const { return GetParam() == 2 || GetParam() == 3; }
};

TEST_P(StreamOfType, BeginsWithEmptyDataForOurOwnRequests) {
    setData("old");
    EXPECT_EQ(newStream(), 0);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(page.data(), isKnown() ? "" : "old");
    EXPECT_THAT(log.events(),
                ElementsAre("[PluginInstance_NewStream] stream=" + address() +
                                ", url='http://here/', mime-type=text/html\n",
                            "PluginInstance_NewStream: notify Type(=" + type() + ")\n",
                            "[PluginInstance_NewStream]  Done type =" + type() + "\n"));
}

TEST_P(StreamOfType, CollectsPageResultsAndServiceAnswersOnly) {
    setData("old");
    EXPECT_EQ(write(0, 3, "abcdef"), 3);
    EXPECT_EQ(page.data(), isCollected() ? "oldabc" : "old");
    std::vector<std::string> expected = {
        "[PluginInstance_Write] stream=" + address() + ", url='http://here/'\n",
        "[PluginInstance_Write] notify type=" + type() + "\n"};
    if (!isCollected())
        expected.push_back("[PluginInstance_Write] Unhandleed type = " + type() + "\n");
    EXPECT_EQ(log.events(), expected);
}

TEST_P(StreamOfType, EndsWithoutSendingAnything) {
    EXPECT_EQ(plugin.destroystream(page.handle(), &stream, 0), 0);
    EXPECT_THAT(log.events(),
                ElementsAre("[PluginInstance_DestroyStream] stream=" + address() +
                                ", url='http://here/', reason=0 \n",
                            "[PluginInstance_DestroyStream] notify type=" + type() + " \n"));
    EXPECT_THAT(browser.calls, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Types, StreamOfType, testing::Values(1, 2, 3, 0, 4, 77),
                         testing::PrintToStringParamName());

// Without a notify record.

TEST_F(Stream, WithoutANotifyRecordIsAcceptedAndIgnored) {
    stream.notifyData = nullptr;
    setData("old");
    EXPECT_EQ(newStream(), 0);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(page.data(), "old");
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_NewStream] stream=" + address() +
                                              ", url='http://here/', mime-type=text/html\n",
                                          "[PluginInstance_NewStream] No notifyData\n"));
}

TEST_F(Stream, BytesWithoutANotifyRecordAreDroppedUnderTheNewStreamPrefix) {
    stream.notifyData = nullptr;
    setData("old");
    EXPECT_EQ(write(0, 3, "abc"), 3);
    EXPECT_EQ(page.data(), "old");
    EXPECT_THAT(log.events(),
                ElementsAre("[PluginInstance_Write] stream=" + address() + ", url='http://here/'\n",
                            "[PluginInstance_NewStream] No notifyData\n"));
}

TEST_F(Stream, EndsWithoutANotifyRecordWithItsTraceAlone) {
    stream.notifyData = nullptr;
    EXPECT_EQ(plugin.destroystream(page.handle(), &stream, 0), 0);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_DestroyStream] stream=" + address() +
                                          ", url='http://here/', reason=0 \n"));
}

// WriteReady.

TEST_F(Stream, TakesBlocksOf64000Bytes) {
    setType(3);
    EXPECT_EQ(plugin.writeready(page.handle(), &stream), 64000);
    stream.notifyData = nullptr;
    EXPECT_EQ(plugin.writeready(page.handle(), &stream), 64000);
    const std::string line =
        "[PluginInstance_WriteReady] stream=" + address() + ", url='http://here/'\n";
    EXPECT_THAT(log.events(), ElementsAre(line, line));
}

// Write.

TEST_F(Stream, AppendsBlocksInTheOrderOfArrivalWhateverTheirOffset) {
    setType(3);
    newStream();
    EXPECT_EQ(write(900, 2, "ab"), 2);
    EXPECT_EQ(write(0, 2, "cd"), 2);
    EXPECT_EQ(write(-5, 2, "ef"), 2);
    EXPECT_EQ(page.data(), "abcdef");
}

TEST_F(Stream, AnEmptyBlockAddsNothing) {
    setType(3);
    newStream();
    EXPECT_EQ(write(0, 2, "ab"), 2);
    EXPECT_EQ(write(2, 0, "x"), 0);
    EXPECT_EQ(write(2, 0, nullptr), 0);
    EXPECT_EQ(page.data(), "ab");
}

TEST_F(Stream, BlocksThatCannotBeReadAddNothingAndAreTaken) {
    setType(3);
    newStream();
    write(0, 2, "ab");
    EXPECT_EQ(write(2, -1, "x"), -1);
    EXPECT_EQ(write(2, INT_MIN, "x"), INT_MIN);
    EXPECT_EQ(write(2, 5, nullptr), 5);
    EXPECT_EQ(page.data(), "ab");
}

TEST_F(Stream, KeepsEveryByteOfABlockZerosIncluded) {
    setType(3);
    newStream();
    std::string block(64001, '\0');
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i % 256);
    EXPECT_EQ(write(0, 64001, block.data()), 64001);
    EXPECT_EQ(write(0, 3, "\0\0x"), 3);
    const CString& data = *page.record().data;
    ASSERT_EQ(data.GetLength(), 64004);
    EXPECT_TRUE(std::string(data, 64004) == block + std::string("\0\0x", 3));
}

TEST_F(Stream, AnAnnouncedLengthIsOnlyAHint) {
    setType(3);
    for (const uint32 announced : {0U, 3U, 100000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        stream.end = announced;
        EXPECT_EQ(newStream(), 0);
        write(0, 5, "hello");
        EXPECT_EQ(page.data(), "hello") << announced;
    }
}

// DestroyStream.

TEST_F(Stream, ANetworkErrorIsGivenBackAsTheError) {
    setType(3);
    EXPECT_EQ(plugin.destroystream(page.handle(), &stream, 1), 1);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_DestroyStream] stream=" + address() +
                                              ", url='http://here/', reason=1 \n",
                                          "PluginInstance_DestroyStream: Network problem\n"));
    EXPECT_THAT(browser.calls, IsEmpty());
}

TEST_F(Stream, ABreakByTheUserIsNoError) {
    setType(2);
    EXPECT_EQ(plugin.destroystream(page.handle(), &stream, 2), 0);
    EXPECT_THAT(log.events(), ElementsAre("[PluginInstance_DestroyStream] stream=" + address() +
                                              ", url='http://here/', reason=2 \n",
                                          "[PluginInstance_DestroyStream] notify type=2 \n"));
}

// URLs and types that are missing.

TEST_F(Stream, AMissingUrlOrTypeDoesNoHarm) {
    setType(3);
    stream.url = nullptr;
    EXPECT_EQ(plugin.newstream(page.handle(), nullptr, &stream, 0, &mode), 0);
    EXPECT_EQ(plugin.writeready(page.handle(), &stream), 64000);
    EXPECT_EQ(write(0, 1, "x"), 1);
    EXPECT_EQ(plugin.destroystream(page.handle(), &stream, 0), 0);
    EXPECT_EQ(page.data(), "x");
}

}  // namespace
