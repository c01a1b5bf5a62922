// Two machines, each with its session, and what crosses between them. A is this process's; both serve for all tests.
#include <filesystem>
#include <gtest/gtest.h>

#include "files/Utf8TextFile.h"
#include "peers/LinkHub.h"
#include "peers/OtherMachine.h"
#include "support/FileBytes.h"
#include "transports/HexBytes.h"
#include "transports/WinUsbSession.h"

namespace {

struct Link {
    Link() {
        std::filesystem::create_directories(folder / "b" / "there");
        WCHAR temporary[MAX_PATH];
        GetTempPathW(MAX_PATH, temporary);
        const CString device = CString(temporary) + L"usb-link";
        const std::string text = hub.DeviceText(0);
        CFile(device, CFile::modeCreate | CFile::modeWrite).Write(text.data(), static_cast<UINT>(text.size()));
        b.Do({"base", (folder / "b").string()});
        b.Do({"connect", hub.DeviceText(1)});
        a.SetBaseDirectory((folder / "a").c_str());
        EXPECT_EQ(a.Connect(device, true), 0U);
        EXPECT_EQ(ToHex(hub.Seen(0) + hub.Seen(1)), "3312000034120000");
    }

    const std::filesystem::path folder = _wgetenv(L"USB_LINK_FOLDER");
    LinkHub hub;  // A is end 0
    OtherMachine b;
    WinUsbSession a;
};

class UsbLink : public testing::Test {
protected:
    static void SetUpTestSuite() { s_link = new Link; }
    static void TearDownTestSuite() {
        s_link->a.Finish(7);
        EXPECT_EQ(s_link->b.Do({"status"}), "7");
        delete s_link;
    }
    std::string OnB(const std::wstring& name) const { return BytesOf(link.folder / "b" / name); }

    static inline Link* s_link = nullptr;
    Link& link = *s_link;
    WinUsbSession& a = s_link->a;
};

}  // namespace

TEST_F(UsbLink, FilesOfAllSizesCrossAndComeBackAndBothEndsAsk) {
    for (const DWORD size : {0U, 1U, 1U << 20, (1U << 20) + 1, 5U << 20}) {
        const std::wstring name = L"new\\sub\\" + std::to_wstring(size);
        const HANDLE file = a.OpenDataFile(name.c_str());
        std::string data = Pattern(size, 3);
        a.WriteData(file, data.data(), size);
        EXPECT_TRUE(OnB(name) == data) << size;
        EXPECT_EQ(link.b.Do({"put", "from-b\\" + std::to_string(size), std::to_string(size), "9"}), "ok");
        EXPECT_TRUE(BytesOf(link.folder / "a" / "from-b" / std::to_string(size)) == Pattern(size, 9)) << size;
        EXPECT_EQ(a.SeekData(file, 0, FILE_BEGIN), 0);
        for (DWORD done = 0; done < size; done += kUsbChunkBytes) {
            std::string piece(std::min(size - done, DWORD{kUsbChunkBytes}), '\0');
            EXPECT_EQ(a.ReadData(file, piece.data(), static_cast<DWORD>(piece.size())), piece.size());
            EXPECT_TRUE(piece == data.substr(done, piece.size()));
        }
        // More than a chunk at once: each lands at the start of the buffer.
        if (size == 5U << 20) {
            EXPECT_EQ(a.SeekData(file, -2097152, FILE_CURRENT), 3145728);
            EXPECT_EQ(a.ReadData(file, data.data(), 2097152), 2097152U);
            EXPECT_TRUE(data.substr(0, 1048576) == Pattern(size, 3).substr(4194304));
        }
        a.CloseFile(file);
    }
}

TEST_F(UsbLink, WhatTheCableDamagesCostsOneResend) {
    const std::string question =
        "411200000a0000007400680065007200"
        "6500";
    const struct {
        int end;
        LinkHub::Fault fault;
        std::string sent;
        std::string answered;
    } cases[] = {
        {0, {}, question, "4212000001000000"},
        {0, {LinkHub::Corrupt, 1}, question + question, "501200004212000001000000"},
        {0, {LinkHub::Drop}, question + question, "501200004212000001000000"},
        {1, {LinkHub::Corrupt}, question + "50120000", "42120000010000004212000001000000"},
        {0, {LinkHub::Duplicate, 0, 18}, question, "42120000010000004212000001000000"},
        {0, {}, question, "4212000001000000"},
    };
    for (const auto& c : cases) {
        link.hub.Plan(c.end, c.fault);
        link.hub.Seen(0);
        link.hub.Seen(1);
        EXPECT_EQ(a.DoesDirectoryExist(L"there"), 1U);
        std::string sent, answered;
        for (int i = 0; i < 10000 && answered.size() < c.answered.size(); ++i, Sleep(1)) {
            sent += ToHex(link.hub.Seen(0));
            answered += ToHex(link.hub.Seen(1));
        }
        EXPECT_EQ(sent, c.sent);
        EXPECT_EQ(answered, c.answered);
    }
    link.hub.Split();
    EXPECT_EQ(a.DoesDirectoryExist(L"there"), 1U);
    EXPECT_EQ(link.b.Do({"exists", "from-nobody"}), "0");
}

// The exchange that docs/usb-link.md shows, between the greeting and the end.
TEST_F(UsbLink, OneExchangeByteForByte) {
    for (const int end : {0, 1}) link.hub.Seen(end);
    const HANDLE file = a.OpenDataFile(L"d\\a.txt");
    a.WriteData(file, "A`\x7f", 3);
    a.SeekData(file, 1, FILE_BEGIN);
    char buffer[2];
    a.ReadData(file, buffer, 2);
    a.CloseFile(file);
    const std::string handle = ToHex({reinterpret_cast<const char*>(&file), sizeof(file)});
    EXPECT_EQ(ToHex(link.hub.Seen(0)),
              "351200000e00000064005c0061002e00740078007400"
              "39120000" +
                  handle +
                  "0300000041607f"
                  "3b120000" +
                  handle +
                  "010000000000000000000000"
                  "37120000" +
                  handle +
                  "02000000"
                  "3d120000" +
                  handle);
    EXPECT_EQ(ToHex(link.hub.Seen(1)), "36120000" + handle +
                                           "3a12000003000000"
                                           "3c1200000100000000000000"
                                           "3812000002000000607f"
                                           "3e120000");
}

TEST_F(UsbLink, ATextFileObjectCrossesAtOnceOrFromMemory) {
    for (const bool isBuffered : {false, true}) {
        CUtf8TextFile file;
        file.SetSession(&a);
        file.SetUseMemoryBuffer(isBuffered);
        ASSERT_TRUE(file.Open(L"top\\plain.txt", CFile::modeCreate | CFile::modeReadWrite));
        file.WriteString(L"one\r\n");
        EXPECT_EQ(file.GetPosition(), 8U);
        file.Seek(3, CFile::begin);
        char text[3];
        EXPECT_EQ(std::string(text, file.Read(text, sizeof(text))), "one");
        EXPECT_EQ(file.GetPosition(), 6U);
        EXPECT_EQ(CauseOf([&] { EXPECT_EQ(file.GetLength(), 8U); }), isBuffered ? -1 : CFileException::none);
        file.Close();
        EXPECT_EQ(OnB(L"top\\plain.txt"), std::string(kMark) + "one\r\n");
    }
}
