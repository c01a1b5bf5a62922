#include <cstring>
#include <process.h>

#include "transports/UsbSessionFixture.h"

TEST_F(UsbSession, ServesThePeerAndTellsItsOwner) {
    EXPECT_IN_FRESH_PROCESS([&] {
        static HANDLE s_full = nullptr;  // writes to it fail, though they say otherwise
        static std::wstring s_measured;
        const ImportPatch<decltype(&WriteFile)> write(
            kProgram, "WriteFile", [](HANDLE file, LPCVOID data, DWORD bytes, LPDWORD written, LPOVERLAPPED how) {
                *written = 1;
                if (file == s_full) return FALSE;
                return SystemFunction(&WriteFile, L"kernel32.dll", "WriteFile")(file, data, bytes, written, how);
            });
        const ImportPatch<decltype(&GetDiskFreeSpaceExW)> space(
            kProgram, "GetDiskFreeSpaceExW", [](LPCWSTR path, PULARGE_INTEGER mine, PULARGE_INTEGER, PULARGE_INTEGER) {
                s_measured = path;
                mine->QuadPart = 0x0807060504030201;
                return TRUE;
            });
        std::filesystem::create_directory(folder.Path(L"d"));
        Owner owner;
        session->SetOwnerWindow(owner.Window());
        Connect();
        const std::string h = Open(L"f");
        const std::string full = Open(L"full");
        std::memcpy(&s_full, FromHex(full).data(), sizeof(s_full));
        EXPECT_EQ(owner.Take(33), "Opening 'f'...;Opening 'full'...;");
        const std::string longName(522 * 2, '1');
        const struct {
            std::string comes;
            std::string goes;
            std::string told;
            const wchar_t* logged;
        } cases[] = {
            {"33120000", "34120000", "peer 1;", L""},
            {"39120000" + h + "03000000 41607f", "3a12000003000000", "Writing to 'f'...;", L""},
            {"39120000" + h + "00000000", "3a12000000000000", "Writing to 'f'...;", L""},
            {"39120000" + full + "01000000 41", "3a12000000000000", "Writing to 'full'...;", L""},
            {"3b120000" + h + "0200000000000000 00000000", "3c1200000200000000000000", "", L""},
            {"3b120000" + h + "ffffffffffffffff 01000000", "3c1200000100000000000000", "", L""},
            {"3b120000" + h + "ffffffffffffffff 00000000", "3c1200000000000000000000", "", L""},
            {"37120000" + h + "02000000", "3812000002000000607f", "Reading from 'f'...;", L""},
            {"50120000", "3812000002000000607f", "", L"Resending last command"},
            {"37120000" + h + "05000000", "3812000000000000", "Reading from 'f'...;", L""},
            {"35120000" + OnTheWire(L"f"), "36120000" + kNone, "Opening 'f'...;", L"Failed to open file '"},
            {"41120000" + OnTheWire(L"d"), "4212000001000000", "", L""},
            {"41120000" + OnTheWire(L"f"), "4212000000000000", "", L""},
            {"41120000" + OnTheWire(L"none"), "4212000000000000", "", L""},
            {"45120000", "461200000102030405060708", "", L""},
            {"37120000" + kNone + "00000000", "3812000000000000", "Reading from 'f'...;", L""},
            {"37120000" + kNone + "ffffffff", "3812000000000000", "", L"Command:0x00001237 is for 4294967295 bytes"},
            {"3d120000" + h, "3e120000", "Closing 'f'...;", L""},
            {"39120000" + h + "01000000 41", "3a12000000000000", "", L"no open file with handle"},
            {"37120000" + h + "01000000", "3812000000000000", "", L"no open file with handle"},
            {"3b120000" + h + "0100000000000000 00000000", "3c1200000000000000000000", "", L"no open file"},
            {"3d120000" + h, "3e120000", "", L"no open file with handle"},
            {"35120000 0a020000" + longName, "36120000" + kNone, "", L"Command:0x00001235 has a name of 522 bytes"},
            {"41120000 01000000 61", "4212000000000000", "", L"Command:0x00001241 has a name of 1 bytes"},
            {"36120000" + h + "33120000", "34120000", "peer 1;", L"Nobody asked for reply:0x00001236"},
            {"38120000 05000000 3312000034 33120000", "34120000", "peer 1;", L"Nobody asked for reply:0x00001238"},
            {"48120000 33120000", "34120000", "peer 1;", L"Nobody asked for reply:0x00001248"},
            {"3f120000 4142", "50120000", "", L"Not expecting command:0000123f"},  // and what waits is thrown away
            {"50120000", "50120000", "", L"Resending last command"},
            {"47120000 2a000000", "48120000", "status 42;", L""},
            {"47120000 07000000", "48120000", "status 7;", L""},
        };
        for (const auto& c : cases) {
            const LogCapture log;
            Exchange(c.comes, c.goes);
            EXPECT_EQ(owner.Take(c.told.size()), c.told) << c.comes;
            std::wstring all;
            for (const auto& line : log.GetLines()) all += line.message;
            EXPECT_NE(all.find(c.logged), std::wstring::npos) << c.logged;
            if (*c.logged == 0) {
                EXPECT_TRUE(log.Messages(LogLevel::Error).empty()) << c.comes;
            }
        }
        EXPECT_EQ(BytesOf(folder.Path(L"f")), "A`\x7f");
        EXPECT_EQ(s_measured, folder.Path());
        session->SetAlternateDirectory(folder.Path(L"other").c_str());
        Open(L"C:\\Users\\a.txt");
        Open(L"plain.txt");
        Exchange("45120000", "461200000102030405060708");
        Exchange("41120000" + OnTheWire(L"d"), "4212000001000000");  // still below the base directory
        EXPECT_EQ(s_measured, folder.Path(L"other"));
        EXPECT_FALSE(CanWrite(folder.Path(L"other\\Users\\a.txt")) || CanWrite(folder.Path(L"other\\plain.txt")));
        DWORD status = 0;
        EXPECT_TRUE(session->GetFinishStatus(status));
        EXPECT_EQ(status, 7U);
        // What is not whole is not served.
        owner.Take(1);
        usb.Put("35120000 02000000 61");
        usb.Cut();
        session->CloseSession();
        EXPECT_EQ(owner.Take(0), "");
        EXPECT_FALSE(std::filesystem::exists(folder.Path(L"a")));
        EXPECT_TRUE(CanWrite(usb.Device().GetString()));
    });
}

TEST_F(UsbSession, AsksThePeerAndEachRequestFailsInItsOwnWay) {
    EXPECT_IN_FRESH_PROCESS([&] {
        const HANDLE file = reinterpret_cast<HANDLE>(UINT_PTR{4});
        const std::string h = "0400000000000000";
        char buffer[3] = {};
        const auto opens = [&] {
            const HANDLE opened = session->OpenDataFile(L"a");
            return opened == file ? 4 : opened == INVALID_HANDLE_VALUE ? -1 : -2;
        };
        const auto reads = [&] { return static_cast<INT64>(session->ReadData(file, buffer, 3)); };
        const auto writes = [&] { return INT64{CauseOf([&] { session->WriteData(file, "A`", 2); })}; };
        const struct {
            std::function<INT64()> request;
            std::vector<std::string> exchange;  // what goes, what comes, in turns
            INT64 result;
            INT64 failure;
        } cases[] = {
            {opens,
             {"3512000002000000"
              "6100",
              "36120000" + h},
             4,
             -1},
            {[&] { return INT64{session->DoesDirectoryExist(L"a")}; },
             {"41120000020000006100", "42120000 01000000"},
             1,
             0},
            {[&] { return static_cast<INT64>(session->DriveFreeSpace()); },
             {"45120000", "46120000 0700000000000000"},
             7,
             0},
            {[&] { return session->SeekData(file, -2, FILE_END); },
             {"3b120000" + h + "feffffffffffffff02000000", "3c120000 0500000000000000"},
             5,
             0},
            // A reply that promises too much counts as nothing; what is missing is asked for again.
            {reads,
             {"37120000" + h + "03000000", "38120000 04000000 31323334", "37120000" + h + "03000000",
              "38120000 02000000 3132", "37120000" + h + "01000000", "3a120000 01000000 38120000 01000000 33"},
             3,
             0},
            {writes,
             {"39120000" + h + "020000004160", "3a120000 ffffffff", "39120000" + h + "020000004160",
              "3a120000 01000000", "39120000" + h + "0100000060", "3a120000 01000000"},
             -1,
             ERROR_GEN_FAILURE},
            {[&] { return session->CloseFile(file), INT64{0}; }, {"3d120000" + h, "3e120000"}, 0, 0},
        };
        Owner owner;
        session->SetOwnerWindow(owner.Window());
        const LogCapture log;
        Connect();
        for (const auto& c : cases) {
            auto result = std::async(std::launch::async, c.request);
            for (size_t i = 0; i < c.exchange.size(); i += 2) {
                EXPECT_EQ(usb.Take(c.exchange[i].size() / 2), c.exchange[i]);
                usb.Put(c.exchange[i + 1]);
            }
            EXPECT_EQ(result.get(), c.result) << c.exchange[0];
        }
        EXPECT_EQ(std::string(buffer, 1), "3");  // each read lands at the start
        for (const wchar_t* error :
             {L"Read Failed! 0 of 3 bytes read!", L"Read Failed! 2 of 3 bytes read!",
              L"Reply:0x00001238 tells of 4 bytes, 3 were asked for", L"Nobody asked for reply:0x0000123a"}) {
            EXPECT_TRUE(log.Contains(LogLevel::Error, error)) << error;
        }
        EXPECT_TRUE(log.Contains(LogLevel::Warning, L"Write Incomplete! 1 of 2 bytes written!"));
        usb.writeError = ERROR_GEN_FAILURE;
        for (const auto& c : cases) EXPECT_EQ(c.request(), c.failure) << c.exchange[0];
        usb.writeError = 0;
        for (const auto& c : cases) EXPECT_EQ(c.request(), c.failure) << c.exchange[0];
        EXPECT_EQ(owner.Take(11), "status 322;");
    });
}

TEST_F(UsbSession, EndsByFinishFarewellOrAFailureAndAsksNothingAfterwards) {
    const struct {
        const char* comes;
        const char* told;
    } cases[] = {{"48120000", ""}, {"49120000", "peer 0;"}, {"33120000", "peer 1;status 322;"}};
    for (const auto& c : cases) {
        EXPECT_IN_FRESH_PROCESS([&] {
            Owner owner;
            session->SetOwnerWindow(owner.Window());
            Connect();
            if (*c.told == 0) {
                EXPECT_EQ(
                    Ask([&] { return session->Finish(9), session->DriveFreeSpace(); }, "4712000009000000", c.comes),
                    0U);
            } else {
                usb.writeError = ERROR_GEN_FAILURE;
                usb.Put(c.comes);
            }
            EXPECT_EQ(owner.Take(std::string_view(c.told).size()), c.told);
            usb.writeError = 0;
            EXPECT_EQ(session->OpenDataFile(L"late"), INVALID_HANDLE_VALUE);
            session->CloseSession();
        });
    }
}

// Without a device, a thread or memory for a message.
TEST_F(UsbSession, WhatItLacksIsTold) {
    usb.openError = ERROR_BAD_COMMAND;
    EXPECT_EQ(session->Connect(usb.Device(), true), static_cast<DWORD>(HRESULT_FROM_WIN32(ERROR_BAD_COMMAND)));
    EXPECT_EQ(CauseOf([&] { session->WriteData(nullptr, "a", 1); }), ERROR_PIPE_NOT_CONNECTED);
    session = std::make_unique<WinUsbSession>();
    usb.openError = 0;
    EXPECT_IN_FRESH_PROCESS([&] {
        static int s_threads = 0;
        const ImportPatch<decltype(&_beginthreadex)> none(
            LoadedModule(L"framework.dll"), "_beginthreadex",
            [](void* security, unsigned stack, unsigned(__stdcall * start)(void*), void* argument, unsigned flags,
               unsigned* id) -> uintptr_t {
                return ++s_threads == 2 ? 0 : _beginthreadex(security, stack, start, argument, flags, id);
            });
        EXPECT_EQ(session->Connect(usb.Device(), false), DWORD{ERROR_NOT_ENOUGH_MEMORY});
        EXPECT_EQ(s_threads, 2);
    });
    EXPECT_IN_FRESH_PROCESS([&] {
        const ImportPatch<void* (*)(void*, size_t)> memory(LoadedModule(L"framework.dll"), "realloc",
                                                           [](void*, size_t) -> void* { return nullptr; });
        Owner owner;
        session->SetOwnerWindow(owner.Window());
        Connect();
        usb.Put("33120000");
        EXPECT_EQ(owner.Take(18), "peer 1;status 322;");
    });
}
