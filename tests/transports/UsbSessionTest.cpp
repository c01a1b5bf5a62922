// What a session serves, asks and tells.
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
                mine->QuadPart = 0x8807060504030201;
                return TRUE;
            });
        std::filesystem::create_directory(folder.Path(L"d"));
        const std::filesystem::path base = folder.Path();
        const std::wstring up = L"..\\" + base.filename().wstring() + L"\\up";
        const std::wstring deep = std::wstring(120, L'd') + L"\\" + std::wstring(120, L'e') + L"\\f";
        const Owner owner;
        Connect(owner.Window());
        const std::string h = Open(L"f");
        const std::string full = Open(L"full");
        std::memcpy(static_cast<void*>(&s_full), FromHex(full).data(), sizeof(s_full));
        EXPECT_EQ(owner.Take(33), "Opening 'f'...;Opening 'full'...;");
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
            {"45120000", "461200000102030405060788", "", L""},
            {"37120000" + kNone + "00000000", "3812000000000000", "Reading from 'f'...;", L""},
            {"37120000" + kNone + "ffffffff", "3812000000000000", "", L"Command:0x00001237 is for 4294967295 bytes"},
            {"3d120000" + h, "3e120000", "Closing 'f'...;", L""},
            {"39120000" + h + "01300000" + std::string(0x3001 * 2, '3'), "3a12000000000000", "",
             L"no open file with handle"},
            {"37120000" + h + "01000000", "3812000000000000", "", L"no open file with handle"},
            {"3b120000" + h + "0100000000000000 00000000", "3c1200000000000000000000", "", L"no open file"},
            {"3d120000" + h, "3e120000", "", L"no open file with handle"},
            {"35120000 0a020000" + std::string(522 * 2, '1'), "36120000" + kNone, "",
             L":0x00001235 has a name of 522 bytes"},
            {"41120000 01000000 61", "4212000000000000", "", L"Command:0x00001241 has a name of 1 bytes"},
            {"35120000" + OnTheWire(up), "36120000" + kNone, "", L"leaves the directory"},
            {"35120000" + OnTheWire(base / "drive"), "36120000" + kNone, "", L"leaves the directory"},
            {"41120000" + OnTheWire(base / "d"), "4212000000000000", "", L"leaves the directory"},
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
            EXPECT_TRUE(*c.logged != 0 || log.Messages(LogLevel::Error).empty()) << c.comes;
        }
        EXPECT_EQ(BytesOf(folder.Path(L"f")), "A`\x7f");
        EXPECT_TRUE(CanWrite(folder.Path(L"f")) && DeleteFileW(folder.Path(L"f").c_str())) << "closed by the peer";
        EXPECT_EQ(s_measured, folder.Path());
        session->SetMayLeaveDirectories(true);
        for (const std::wstring& name : {up, (base / "drive").wstring(), deep}) EXPECT_NE(Open(name), kNone);
        Exchange("41120000" + OnTheWire(base / "d"), "4212000001000000");
        session->SetAlternateDirectory(folder.Path(L"other").c_str());
        Open(L"C:\\Users\\a.txt");
        Open(L"plain.txt");
        Exchange("45120000", "461200000102030405060788");
        Exchange("41120000" + OnTheWire(L"d"), "4212000001000000");  // still below the base directory
        EXPECT_EQ(s_measured, folder.Path(L"other"));
        const std::wstring files[] = {L"up", L"drive", deep, L"other\\Users\\a.txt", L"other\\plain.txt", L"full"};
        for (const auto& file : files) EXPECT_FALSE(CanWrite(folder.Path(file))) << file;
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
        for (const auto& file : files) EXPECT_TRUE(CanWrite(folder.Path(file))) << file;
        EXPECT_TRUE(CanWrite(usb.Device().GetString()));
    });
}

TEST_F(UsbSession, AsksThePeerAndEachRequestFailsInItsOwnWay) {
    EXPECT_IN_FRESH_PROCESS([&] {
        const HANDLE file = reinterpret_cast<HANDLE>(UINT64{0x8807060504030201});
        const std::string h = "0102030405060788";
        char buffer[3] = {};
        const auto opens = [&] {
            const HANDLE opened = session->OpenDataFile(L"a");
            return opened == file ? 4 : opened == INVALID_HANDLE_VALUE ? -1 : -2;
        };
        const auto exists = [&] { return INT64{session->DoesDirectoryExist(L"a")}; };
        const auto reads = [&] { return static_cast<INT64>(session->ReadData(file, buffer, 3)); };
        const auto writes = [&] { return INT64{CauseOf([&] { session->WriteData(file, "A`", 2); })}; };
        const std::string asked = "41120000020000006100";
        std::vector<std::string> nothingTaken;  // ten times in a row, though not the first time
        for (int i = 0; i < 20; ++i) {
            nothingTaken.push_back("39120000" + h + (i < 10 ? "020000004160" : "0100000060"));
            nothingTaken.emplace_back(i == 9 ? "3a120000 01000000" : "3a120000 00000000");
        }
        const struct {
            std::function<INT64()> request;
            std::vector<std::string> exchange;
            INT64 result;
            INT64 failure;
        } cases[] = {
            {opens, {"35120000020000006100", "36120000" + h}, 4, -1},
            {exists, {asked, "42120000 01000000"}, 1, 0},
            // What cannot be read is asked for again, by either end.
            {exists, {asked, "50120000", asked, "42120000 01000000"}, 1, 0},
            {exists, {asked, "bd120000 01000000", "50120000", "42120000 01000000"}, 1, 0},
            {[&] { return static_cast<INT64>(session->DriveFreeSpace()); },
             {"45120000", "46120000 0000000001000080"},
             static_cast<INT64>(0x8000000100000000),
             0},
            {[&] { return session->SeekData(file, -2, FILE_END); },
             {"3b120000" + h + "feffffffffffffff02000000", "3c120000 0500000001000000"},
             0x100000005,
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
            {writes, nothingTaken, ERROR_DISK_FULL, ERROR_GEN_FAILURE},
            {[&] { return session->CloseFile(file), INT64{0}; }, {"3d120000" + h, "3e120000"}, 0, 0},
        };
        const Owner owner;
        const LogCapture log;
        usb.mostBytes = 3;
        Connect(owner.Window());
        for (const auto& c : cases) EXPECT_EQ(Ask(c.request, c.exchange), c.result) << c.exchange[0];
        EXPECT_EQ(std::string(buffer, 1), "3");  // each read lands at the start
        for (const wchar_t* error :
             {L"Read Failed! 0 of 3 bytes read!", L"Read Failed! 2 of 3 bytes read!",
              L"Reply:0x00001238 tells of 4 bytes, 3 were asked for", L"Nobody asked for reply:0x0000123a"}) {
            EXPECT_TRUE(log.Contains(LogLevel::Error, error)) << error;
        }
        EXPECT_TRUE(log.Contains(LogLevel::Warning, L"Write Incomplete! 1 of 2 bytes written!"));
        for (const DWORD error : {DWORD{ERROR_GEN_FAILURE}, DWORD{ERROR_SUCCESS}}) {
            usb.writeError = error;
            for (const auto& c : cases) EXPECT_EQ(c.request(), c.failure) << c.exchange[0];
        }
        EXPECT_EQ(owner.Take(11), "status 322;");
        session.reset();
        EXPECT_TRUE(usb.calls.ends_with("free 00;")) << "not closed";
    });
}

TEST_F(UsbSession, EndsByFinishFarewellOrAFailureAndAsksNothingAfterwards) {
    const struct {
        const char* comes;
        const char* told;
    } cases[] = {{"48120000", ""}, {"49120000", "peer 0;"}, {"33120000", "peer 1;status 322;"}};
    for (const auto& c : cases) {
        EXPECT_IN_FRESH_PROCESS([&] {
            const Owner owner;
            Connect(owner.Window());
            if (*c.told == 0) {
                const auto finish = [&] { return session->Finish(9), session->DriveFreeSpace(); };
                EXPECT_EQ(Ask(finish, {"4712000009000000", c.comes}), 0U);
            } else {
                usb.writeError = ERROR_GEN_FAILURE;
                usb.Put(c.comes);
            }
            EXPECT_EQ(owner.Take(std::string_view(c.told).size()), c.told);
            usb.writeError = 0;
            EXPECT_EQ(session->OpenDataFile(L"late"), INVALID_HANDLE_VALUE);
            session.reset();
            EXPECT_TRUE(usb.calls.ends_with("free 00;")) << "not closed";
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
            LoadedModule(L"RegistryRulesFramework.dll"), "_beginthreadex",
            [](void* security, unsigned stack, unsigned(__stdcall * start)(void*), void* argument, unsigned flags,
               unsigned* id) -> uintptr_t {
                return ++s_threads == 2 ? 0 : _beginthreadex(security, stack, start, argument, flags, id);
            });
        EXPECT_EQ(session->Connect(usb.Device(), false), DWORD{ERROR_NOT_ENOUGH_MEMORY});
        EXPECT_EQ(s_threads, 2);
    });
    EXPECT_IN_FRESH_PROCESS([&] {
        const ImportPatch<void* (*)(void*, size_t)> memory(LoadedModule(L"RegistryRulesFramework.dll"), "realloc",
                                                           [](void*, size_t) -> void* { return nullptr; });
        const Owner owner;
        Connect(owner.Window());
        usb.Put("33120000");
        EXPECT_EQ(owner.Take(18), "peer 1;status 322;");
    });
}
