// Two machines, each with its session, and what crosses between them. A is this process's; both serve for all tests.
#include <filesystem>
#include <gtest/gtest.h>

#include "files/Utf8TextFile.h"
#include "peers/FakeWinUsb.h"
#include "peers/TwoMachines.h"
#include "support/FileBytes.h"
#include "transports/WinUsbSession.h"

namespace {

struct Link {
    Link() {
        std::filesystem::create_directories(folder / "b" / "there");
        for (const int way : {0, 1}) usb.onCable[way] = [this, way](std::string& bytes) { Note(way, bytes); };
        a.SetBaseDirectory((folder / "a").c_str());
        EXPECT_EQ(a.Connect(usb.Device(), true), 0U);
    }
    void Note(int way, std::string& bytes) {
        const std::lock_guard lock(mutex);
        if (bytes.size() < kShortBytes) seen[way] += ToHex(bytes);
        if (const auto damage = std::exchange(damages[way], nullptr)) damage(bytes);
    }
    // The short ones of the transfers that A has sent, or of the reads of what came, since the last call; waits for so
    // much in hexadecimal.
    std::string Seen(int way, size_t length = 0) {
        for (int looks = 0;; ++looks, Sleep(1)) {
            const std::lock_guard lock(mutex);
            if (seen[way].size() >= length || looks == 10000) return std::exchange(seen[way], {});
        }
    }
    std::string OtherDoes(const std::string& line) const {
        other.SendAll((line + "\n").data(), line.size() + 1);
        std::string answer;
        for (char c = 0; other.Receive(&c, 1, kOtherComesMilliseconds) == 1 && c != '\n';) answer += c;
        return answer;
    }

    static constexpr size_t kShortBytes = 100;
    const std::filesystem::path folder = _wgetenv(L"USB_LINK_FOLDER");
    const LinkSocket listener = ListenForTheOther();
    const LinkSocket other = listener.Accept(kOtherComesMilliseconds);
    std::mutex mutex;
    std::string seen[2];                           // of what goes and of what comes
    std::function<void(std::string&)> damages[2];  // what the cable does to the next of it
    FakeWinUsb usb{listener.Accept(kOtherComesMilliseconds)};
    WinUsbSession a;
};

class UsbLink : public testing::Test {
protected:
    static void SetUpTestSuite() { s_link = new Link; }
    static void TearDownTestSuite() {
        s_link->a.Finish(7);
        EXPECT_EQ(s_link->OtherDoes("status"), "7");
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
        EXPECT_EQ(link.OtherDoes("put from-b\\" + std::to_string(size) + " " + std::to_string(size) + " 9"), "ok");
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
    EXPECT_EQ(link.OtherDoes("exists from-nobody"), "0");
}

TEST_F(UsbLink, WhatTheCableDamagesCostsOneResend) {
    const std::string asks = "411200000a00000074006800650072006500", is = "4212000001000000", again = "50120000";
    const struct {
        int way;
        std::function<void(std::string&)> damage;
        std::string goes;
        std::string comes;
    } cases[] = {
        {0, nullptr, asks, is},
        {0, [](std::string& bytes) { bytes[1] ^= 1; }, asks + asks, again + is},
        {0, [](std::string& bytes) { bytes.erase(0, 1); }, asks + asks, again + is},
        {0, [](std::string& bytes) { bytes += bytes; }, asks, is + is},
        {1, [](std::string& bytes) { bytes[0] ^= 8; }, asks + again, "42120000" + is},
        {0, nullptr, asks, is},
    };
    for (const auto& c : cases) {
        for (const int way : {0, 1}) link.Seen(way);
        link.damages[c.way] = c.damage;
        EXPECT_EQ(a.DoesDirectoryExist(L"there"), 1U);
        EXPECT_EQ(link.Seen(0, c.goes.size()), c.goes);
        EXPECT_EQ(link.Seen(1, c.comes.size()), c.comes);
    }
}

// The exchange that docs/usb-link.md shows, between the greeting and the end.
TEST_F(UsbLink, OneExchangeByteForByte) {
    for (const int way : {0, 1}) link.Seen(way);
    const HANDLE file = a.OpenDataFile(L"d\\a.txt");
    a.WriteData(file, "A`\x7f", 3);
    a.SeekData(file, 1, FILE_BEGIN);
    char buffer[2];
    a.ReadData(file, buffer, 2);
    a.CloseFile(file);
    const std::string handle = ToHex({reinterpret_cast<const char*>(&file), sizeof(file)});
    EXPECT_EQ(link.Seen(0), "351200000e00000064005c0061002e00740078007400" + ("39120000" + handle) + "0300000041607f" +
                                ("3b120000" + handle) + "010000000000000000000000" + ("37120000" + handle) +
                                "02000000" + ("3d120000" + handle));
    EXPECT_EQ(link.Seen(1), "36120000" + handle + "3a12000003000000" + "3c1200000100000000000000" +
                                "3812000002000000607f" + "3e120000");
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
