// Two machines, each with its session, and what crosses between them.
#include <cstdio>
#include <fstream>

#include "peers/LinkHub.h"
#include "transports/UsbLinkFixture.h"

namespace {

constexpr size_t kChunkBytes = 1 << 20;

std::string Pattern(size_t size, unsigned seed) {
    std::string data(size, '\0');
    FillPattern(std::span(reinterpret_cast<unsigned char*>(data.data()), size), seed);
    return data;
}

std::uint64_t HashOfText(std::string_view data) {
    return HashOf(std::span(reinterpret_cast<const unsigned char*>(data.data()), data.size()));
}

// What `read` answers for that data.
std::string ReadAnswer(std::string_view data) {
    return std::to_string(data.size()) + " " + std::to_string(HashOfText(data));
}

class UsbLink : public testing::Test {
protected:
    UsbLink() {
        a.Do({"device", hub.DeviceText(0)});
        b.Do({"device", hub.DeviceText(1)});
        a.Do({"base", folder.Path("a")});
        b.Do({"base", folder.Path("b")});
    }

    // B serves without a word, A greets it.
    void Connect() {
        ASSERT_EQ(b.Do({"connect", "wait"}).substr(0, 2), "0 ");
        ASSERT_EQ(a.Do({"connect", "greet"}).substr(0, 2), "0 ");
    }
    void ExpectReadErrors() {
        for (End* each : {&a, &b}) {
            EXPECT_TRUE(each->Await("warning: [WinUsbDevice::ReceiveData] Read Pipe Error:0x0000001f"));
        }
    }
    // A greets B over a cable that ends within what `end` sends first, and waits.
    void GreetAndCut(int end) {
        hub.Plan(end, {LinkHub::Cut, 2});
        ASSERT_EQ(b.Do({"connect", "wait"}).substr(0, 2), "0 ");
        a.Begin({"connect", "greet"});
        ExpectReadErrors();
        EXPECT_EQ(a.Answer(0), "no answer");
        EXPECT_EQ(a.Watch({"events"}), "");
    }

    SharedFolder folder;
    LinkHub hub;  // A is end 0
    End a = Machines().Take("A");
    End b = Machines().Take("B");
};

}  // namespace

TEST_F(UsbLink, FilesOfAllSizesCrossAndComeBack) {
    Connect();
    for (const size_t size : {size_t{0}, size_t{1}, size_t{1} << 20, (size_t{1} << 20) + 1, size_t{64} << 20}) {
        const std::string name = "new\\sub\\" + std::to_string(size) + ".bin";
        const std::string file = a.Do({"open", name});
        ASSERT_EQ(a.Do({"write", file, std::to_string(size), "3"}), "ok");
        const std::string data = Pattern(size, 3);
        EXPECT_EQ(folder.BytesOf("b\\" + name), data) << size;
        EXPECT_EQ(a.Do({"seek", file, "0", "0"}), "0");
        EXPECT_EQ(a.Do({"read", file, std::to_string(size), "1048576"}), ReadAnswer(data)) << size;
        EXPECT_EQ(a.Do({"close", file}), "ok");
    }
    // More than a chunk at once: each lands at the start of the buffer.
    const std::string file = a.Do({"open", "two.bin"});
    a.Do({"write", file, "2097152", "3"});
    EXPECT_EQ(a.Do({"seek", file, "-2097152", "1"}), "0");
    EXPECT_EQ(a.Do({"read", file, "2097152", "2097152"}),
              "2097152 " + std::to_string(HashOfText(Pattern(2097152, 3).substr(1048576))));
    EXPECT_EQ(a.Do({"seek", file, "-97152", "2"}), "2000000");
    EXPECT_EQ(a.Do({"seek", file, "-1", "0"}), "0");
    EXPECT_EQ(a.Do({"finish", "7"}), "ok");
    EXPECT_EQ(b.Watch({"status"}), "1 7");
    EXPECT_EQ(a.Watch({"status"}), "0 0");
    EXPECT_TRUE(b.Await("status: 7"));
    EXPECT_EQ(a.Do({"open", "late.bin"}), "18446744073709551615");
    EXPECT_EQ(a.Do({"end"}), "ok");
    EXPECT_EQ(b.Do({"end"}), "ok");
}

TEST_F(UsbLink, ThePeerTellsOfDirectoriesAndItsOwnerOfProgress) {
    std::filesystem::create_directories(folder.Path("b/there"));
    std::ofstream(folder.Path("b/file.txt")) << "old";
    Connect();
    EXPECT_EQ(a.Do({"exists", "there"}), "1");
    EXPECT_EQ(a.Do({"exists", "file.txt"}), "0");
    EXPECT_EQ(a.Do({"exists", "nothing"}), "0");
    EXPECT_EQ(a.Do({"exists", "\xd0\x9e\xc3\xbc"}), "0");
    EXPECT_GT(std::stoull(a.Do({"space"})), 1000000U);
    const std::string file = a.Do({"open", "file.txt"});
    EXPECT_EQ(folder.BytesOf("b/file.txt"), "");
    a.Do({"write", file, "2", "1"});
    a.Do({"seek", file, "0", "0"});
    a.Do({"read", file, "2", "2"});
    a.Do({"close", file});
    EXPECT_EQ(a.Do({"open", "there"}), "18446744073709551615");
    EXPECT_EQ(
        b.Watch({"events"}),
        "peer: 1 | text: Opening 'file.txt'... | text: Writing to 'file.txt'... | text: Reading from 'file.txt'... | "
        "text: Closing 'file.txt'... | text: Opening 'there'...");
    EXPECT_EQ(a.Watch({"events"}), "peer: 1");
    EXPECT_TRUE(b.Await("error: [WinUsbSession::ReceiveOpenFileSend] Failed to open file '" + folder.Path("b") +
                        "\\there' error: 5"));
    EXPECT_TRUE(a.Await("trace: [WinUsbSession::DoesDirectoryExist] Directory:'there' Exists:'yes'"));
    EXPECT_TRUE(a.Await("error: [WinUsbSession::OpenDataFile] File 'there' could not be opened error: "));
}

TEST_F(UsbLink, BothEndsAskInTurnAndAnAlternateDirectoryTakesThePlaceOfTheTop) {
    b.Do({"alternate", folder.Path("other")});
    Connect();
    for (int round = 0; round < 3; ++round) {
        const std::string seed = std::to_string(round);
        const std::string there = a.Do({"open", "C:\\Users\\" + seed + ".txt"});
        const std::string here = b.Do({"open", "Users\\" + seed + ".txt"});
        EXPECT_EQ(a.Do({"write", there, "5000", seed}), "ok");
        EXPECT_EQ(b.Do({"write", here, "5000", "9"}), "ok");
        EXPECT_EQ(folder.BytesOf("other\\Users\\" + seed + ".txt"), Pattern(5000, static_cast<unsigned>(round)));
        EXPECT_EQ(folder.BytesOf("a\\Users\\" + seed + ".txt"), Pattern(5000, 9));
    }
    const std::string whole = a.Do({"open", "plain.txt"});
    EXPECT_TRUE(std::filesystem::exists(folder.Path("other\\plain.txt")));
    EXPECT_EQ(a.Do({"exists", "Users"}), "0");  // still below the base directory
}

TEST_F(UsbLink, ADamagedCodeCostsOneResend) {
    Connect();
    std::filesystem::create_directories(folder.Path("b/there"));
    const std::string question = FromHex("41120000 0a000000 7400 6800 6500 7200 6500");
    hub.Plan(0, {LinkHub::Corrupt, 1});
    EXPECT_EQ(a.Do({"exists", "there"}), "1");
    EXPECT_TRUE(b.Await("warning: [WinUsbSession::ReadThread] Not expecting command:0000ed41"));
    EXPECT_TRUE(a.Await("trace: [WinUsbSession::ReadThread] Resending last command"));
    EXPECT_EQ(ToHex(hub.Seen(0)), ToHex(FromHex("33120000") + question + question));
    EXPECT_EQ(ToHex(hub.Seen(1)), ToHex(FromHex("34120000 50120000 42120000 01000000")));
    hub.Plan(1, {LinkHub::Corrupt, 0});
    EXPECT_EQ(a.Do({"exists", "there"}), "1");
    EXPECT_EQ(ToHex(hub.Seen(0)).substr(2 * (4 + 2 * question.size())), ToHex(question + FromHex("50120000")));
    // One that lacks a byte is a damaged one.
    hub.Plan(0, {LinkHub::Drop, 0});
    EXPECT_EQ(a.Do({"exists", "there"}), "1");
    EXPECT_TRUE(b.Await("warning: [WinUsbSession::ReadThread] Not expecting command:0a000012"));
    // Sent twice: the second answer is one that nobody asked for.
    hub.Plan(0, {LinkHub::Duplicate, 0, question.size()});
    EXPECT_EQ(a.Do({"exists", "there"}), "1");
    EXPECT_TRUE(a.Await("error: [WinUsbSession::ReadThread] Nobody asked for reply:0x00001242"));
    for (int end : {0, 1}) hub.Split(end, 1, 1);
    EXPECT_EQ(a.Do({"exists", "there"}), "1");
}

// The cable ends within the second chunk: what came whole was written, and both ends go on looking for the rest.
TEST_F(UsbLink, ACutWithinAChunkLeavesTheChunksBefore) {
    Connect();
    const std::string file = a.Do({"open", "cut.bin"});
    hub.Plan(0, {LinkHub::Cut, 2 * 16 + kChunkBytes + 1000});
    a.Begin({"write", file, std::to_string(2 * kChunkBytes), "3"});
    ExpectReadErrors();
    EXPECT_TRUE(folder.BytesOf("b\\cut.bin") == Pattern(2 * kChunkBytes, 3).substr(0, kChunkBytes));
    EXPECT_EQ(b.Watch({"events"}).find("status"), std::string::npos);
}

TEST_F(UsbLink, AGreetingThatIsCutReachesNobody) {
    GreetAndCut(0);
    EXPECT_EQ(b.Watch({"events"}), "");
}

TEST_F(UsbLink, ACutAnswerToAGreetingIsNone) {
    GreetAndCut(1);
    EXPECT_EQ(b.Watch({"events"}), "peer: 1");
}

// The exchange that docs/usb-link.md shows.
TEST_F(UsbLink, OneExchangeByteForByte) {
    Connect();
    const std::string file = a.Do({"open", "d\\a.txt"});
    a.Do({"write", file, "3", "65"});
    a.Do({"seek", file, "1", "0"});
    a.Do({"read", file, "2", "2"});
    a.Do({"close", file});
    a.Do({"finish", "0"});
    const std::uint64_t number = std::stoull(file);
    const std::string handle = ToHex({reinterpret_cast<const char*>(&number), sizeof(number)});
    EXPECT_EQ(ToHex(hub.Seen(0)),
              "33120000"
              "351200000e00000064005c0061002e00740078007400"
              "39120000" +
                  handle +
                  "030000004160"
                  "7f"
                  "3b120000" +
                  handle +
                  "010000000000000000000000"
                  "37120000" +
                  handle +
                  "02000000"
                  "3d120000" +
                  handle + "4712000000000000");
    EXPECT_EQ(ToHex(hub.Seen(1)),
              "34120000"
              "36120000" +
                  handle +
                  "3a12000003000000"
                  "3c1200000100000000000000"
                  "3812000002000000607f"
                  "3e120000"
                  "48120000");
    std::printf("the handle of this run: %s\n", handle.c_str());
}

TEST_F(UsbLink, ATextFileObjectCrossesAtOnceOrFromMemory) {
    Connect();
    const std::string mark = "\xEF\xBB\xBF";
    EXPECT_EQ(a.Do({"text", "top\\plain.txt"}), "8 one 6 cause 0");
    EXPECT_EQ(folder.BytesOf("b\\top\\plain.txt"), mark + "one\r\n");
    EXPECT_EQ(a.Do({"text", "top\\buffered.txt", "buffered"}), "8 one 6 8");
    EXPECT_EQ(folder.BytesOf("b\\top\\buffered.txt"), mark + "one\r\n");
}
