// One session and a peer that is the test, which breaks the rules or the link.
#include "transports/UsbLinkFixture.h"

namespace {

constexpr const char* kNone = "18446744073709551615";

class UsbPeer : public testing::Test {
protected:
    UsbPeer() {
        end.Do({"device", peer.DeviceText()});
        end.Do({"base", folder.Path("")});
        EXPECT_EQ(end.Do({"connect", "wait"}).substr(0, 2), "0 ");
        peer.Accept();
        peer.Send("33120000");
        peer.Expect("34120000");
    }

    // A file "f" on the session's side; its handle as it came.
    std::string OpenFile() {
        peer.Send("35120000 02000000 6600");
        peer.Expect("36120000");
        return peer.Receive(8);
    }

    SharedFolder folder;
    RawPeer peer;
    End end = Machines().Take("A");
};

}  // namespace

TEST_F(UsbPeer, WhatDoesNotFitIsTakenOffTheStreamAndAnsweredAsAFailure) {
    const std::string longName(522 * 2, '1');
    const struct {
        std::string sent;
        const char* reply;
        const char* logged;
    } cases[] = {
        {"35120000 0a020000" + longName, "36120000 ffffffffffffffff", "Command:0x00001235 has a name of 522 bytes"},
        {"35120000 03000000 610062", "36120000 ffffffffffffffff", "Command:0x00001235 has a name of 3 bytes"},
        {"41120000 0a020000" + longName, "42120000 00000000", "Command:0x00001241 has a name of 522 bytes"},
        {"41120000 01000000 61", "42120000 00000000", "Command:0x00001241 has a name of 1 bytes"},
        {"37120000 0400000000000000 10000000", "38120000 00000000", "no open file with handle 0000000000000004"},
        {"39120000 0500000000000000 05000000 3312000034", "3a120000 00000000",
         "no open file with handle 0000000000000005"},
        {"3b120000 0600000000000000 0100000000000000 00000000", "3c120000 0000000000000000",
         "no open file with handle 0000000000000006"},
        {"3d120000 0700000000000000", "3e120000", "no open file with handle 0000000000000007"},
        {"35120000 02000000 3f00", "36120000 ffffffffffffffff", "Failed to open file"},
        {"37120000 ffffffffffffffff 00000000", "38120000 00000000", "trace: "},  // known since the failed opening
        {"37120000 ffffffffffffffff ffffffff", "38120000 00000000", "Command:0x00001237 is for 4294967295 bytes"},
        {"36120000 0400000000000000 33120000", "34120000", "Nobody asked for reply:0x00001236"},
        {"38120000 05000000 3312000034 33120000", "34120000", "Nobody asked for reply:0x00001238"},
        {"48120000 33120000", "34120000", "Nobody asked for reply:0x00001248"},
        {"3f120000", "50120000", "warning: [WinUsbSession::ReadThread] Not expecting command:0000123f"},
        {"50120000", "34120000", "Resending last command"},
    };
    for (const auto& c : cases) {
        peer.Send(c.sent);
        peer.Expect(c.reply);
        EXPECT_TRUE(end.Await(c.logged)) << c.logged;
        peer.Send("33120000");  // the stream is in step
        peer.Expect("34120000");
    }
}

TEST_F(UsbPeer, AnEmptyWriteWritesNothingAndAFinishLetsItServeOn) {
    const std::string handle = OpenFile();
    peer.Send("39120000" + handle + "00000000");
    peer.Expect("3a120000 00000000");
    EXPECT_EQ(end.Watch({"events"}), "peer: 1 | text: Opening 'f'... | text: Writing to 'f'...");
    peer.Send("37120000" + handle + "05000000");  // at the end of the file
    peer.Expect("38120000 00000000");
    peer.Send("47120000 2a000000");
    peer.Expect("48120000");
    EXPECT_TRUE(end.Await("status: 42"));
    EXPECT_EQ(end.Watch({"status"}), "1 42");
    peer.Send("33120000");  // goes on serving
    peer.Expect("34120000");
    peer.Send("49120000");
    EXPECT_TRUE(end.Await("peer: 0"));
    EXPECT_EQ(end.Do({"open", "late"}), kNone);
}

TEST_F(UsbPeer, RepliesThatPromiseTooMuchCountAsNothing) {
    end.Begin({"read", "4", "3", "3"});
    peer.Expect("37120000 0400000000000000 03000000");
    peer.Send("38120000 04000000 31323334");
    peer.Expect("37120000 0400000000000000 03000000");  // asks for what is missing, and that is all
    peer.Send("38120000 02000000 3132");
    peer.Expect("37120000 0400000000000000 01000000");
    peer.Send("3a120000 01000000");  // to a question that was not asked
    peer.Send("38120000 01000000 33");
    EXPECT_EQ(end.Answer().substr(0, 2), "3 ");
    EXPECT_TRUE(end.Await("error: [WinUsbSession::ReadData] Read Failed! 0 of 3 bytes read!"));
    EXPECT_TRUE(end.Await("error: [WinUsbSession::ReadData] Read Failed! 2 of 3 bytes read!"));
    end.Begin({"write", "4", "2", "65"});
    peer.Expect("39120000 0400000000000000 02000000 4160");
    peer.Send("3a120000 ffffffff");
    peer.Expect("39120000 0400000000000000 02000000 4160");
    peer.Send("3a120000 01000000");
    peer.Expect("39120000 0400000000000000 01000000 60");
    peer.Send("3a120000 01000000");
    EXPECT_EQ(end.Answer(), "ok");
    EXPECT_TRUE(end.Await("warning: [WinUsbSession::WriteData] Write Incomplete! 1 of 2 bytes written!"));
}

// One session and a cable that the test cuts. The ends are of both machines in turn: one starts while the other works.
struct CutCable {
    explicit CutCable(size_t turn) : end(Machines().Take(turn % 2 == 0 ? "A" : "B")) {
        end.Do({"device", peer.DeviceText()});
        end.Do({"base", folder.Path("")});
        end.Do({"connect", "wait"});
        peer.Accept();
    }
    void Cut() {
        peer.Cut();
        EXPECT_TRUE(end.Await("warning: [WinUsbDevice::ReceiveData] Read Pipe Error:0x0000001f"));
    }

    SharedFolder folder;
    RawPeer peer;
    End end;
};

struct CutCase {
    Words request;
    std::string sent;  // the request as it crosses
    std::string answer;
    std::string cutReply;  // what comes back of a reply whose rest does not
};

const CutCase kCutCases[] = {
    {{"exists", "a"}, "41120000 02000000 6100", "0", "42120000 01"},
    {{"space"}, "45120000", "0", "46120000 01000000"},
    {{"open", "a"}, "35120000 02000000 6100", kNone, "36120000 04000000"},
    {{"write", "4", "3", "65"}, "39120000 0400000000000000 03000000 41607f", "cause 31 error -1 1", "3a1200"},
    {{"read", "4", "3", "3"},
     "37120000 0400000000000000 03000000",
     "0 " + std::to_string(HashOf({})),
     "38120000 03000000 31"},
    {{"seek", "4", "1", "0"}, "3b120000 0400000000000000 0100000000000000 00000000", "0", "3c120000 01000000000000"},
    {{"close", "4"}, "3d120000 0400000000000000", "ok", "3e"},
    {{"finish", "0"}, "47120000 00000000", "ok", ""},
};

// The link is cut before a request, and each fails in its own way; the owner learns of it once.
TEST(UsbCut, BeforeARequest) {
    for (size_t turn = 0; turn < std::size(kCutCases); ++turn) {
        const auto& c = kCutCases[turn];
        CutCable cable(turn);
        cable.Cut();
        EXPECT_EQ(cable.end.Do(c.request), c.answer) << c.request[0];
        EXPECT_TRUE(cable.end.Await("error: [WinUsbSession::SendDataToWinUsb] Send Error:31"));
        EXPECT_TRUE(cable.end.Await("status: 322"));
        // The link is over: nothing is sent, nobody waited for.
        for (const auto& later : kCutCases) EXPECT_EQ(cable.end.Do(later.request), later.answer) << later.request[0];
        EXPECT_EQ(cable.end.Watch({"events"}), "status: 322");
        EXPECT_EQ(cable.end.Do({"end"}), "ok");
    }
}

// Between a request and its answer, or within the answer: the caller waits without a limit, reads are tried again, and
// the owner hears nothing.
TEST(UsbCut, BeforeAnAnswerIsComplete) {
    for (size_t turn = 0; turn < std::size(kCutCases); ++turn) {
        const auto& c = kCutCases[turn];
        CutCable cable(turn);
        cable.end.Begin(c.request);
        cable.peer.Expect(c.sent);
        cable.peer.Send(c.cutReply);
        cable.Cut();
        EXPECT_TRUE(cable.end.Await("Read Pipe Error:0x0000001f | warning: [WinUsbDevice")) << c.request[0];
        EXPECT_EQ(cable.end.Answer(0), "no answer") << c.request[0];
        EXPECT_EQ(cable.end.Watch({"events"}), "");
    }
}

// What is not whole is not served.
TEST(UsbCut, WithinARequest) {
    for (size_t turn = 0; turn < std::size(kCutCases); ++turn) {
        const auto& c = kCutCases[turn];
        CutCable cable(turn);
        cable.peer.Send("35120000 02000000 6600");
        cable.peer.Expect("36120000");
        const std::string handle = cable.peer.Receive(8);
        std::string request = c.sent;
        if (const size_t at = request.find("0400000000000000"); at != std::string::npos)
            request.replace(at, 16, handle);
        cable.peer.Send(request.substr(0, request.size() - 2));
        cable.Cut();
        EXPECT_EQ(cable.end.Watch({"events"}),
                  std::string("text: Opening 'f'...") + (c.request[0] == "write" ? " | text: Writing to 'f'..." : ""));
        EXPECT_EQ(cable.folder.BytesOf("f"), "");
        EXPECT_FALSE(std::filesystem::exists(cable.folder.Path("a")));
    }
}

// Within an answer, which is more than the cable holds: the owner learns of it, and the session serves no more.
TEST_F(UsbPeer, CutWhileItServes) {
    const std::string handle = OpenFile();
    peer.Send("39120000" + handle + "00008000" + std::string(2 * 0x800000, '7'));
    peer.Expect("3a120000 00008000");
    peer.Send("3b120000" + handle + "0000000000000000 00000000");
    peer.Expect("3c120000 0000000000000000");
    peer.Send("37120000" + handle + "00008000");
    peer.Expect("38120000 00008000 777777");
    peer.Cut();
    EXPECT_TRUE(end.Await("status: 322"));
    EXPECT_TRUE(end.Await("error: [WinUsbSession::SendDataToWinUsb] Send Error:31"));
    EXPECT_EQ(end.Do({"space"}), "0");
}
