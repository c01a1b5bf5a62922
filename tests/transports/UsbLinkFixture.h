// Two fresh ends on two machines with a hub between them, and a folder that both and the test see.
#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "peers/LinkHub.h"
#include "peers/Machines.h"

class UsbLink : public testing::Test {
protected:
    UsbLink() : a(Machines().Take("A")), b(Machines().Take("B")) {
        const std::filesystem::path shared = _wgetenv(L"USB_LINK_FOLDER");
        m_folder = shared / testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directory(m_folder);
        a.Do({"device", hub.DeviceText(0)});
        b.Do({"device", hub.DeviceText(1)});
    }
    ~UsbLink() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    // Both ends connect, B without a word and A by greeting it.
    void Connect() {
        a.Do({"base", InFolder("a")});
        b.Do({"base", InFolder("b")});
        ASSERT_EQ(b.Do({"connect", "wait"}).substr(0, 2), "0 ");
        ASSERT_EQ(a.Do({"connect", "greet"}).substr(0, 2), "0 ");
    }
    std::string InFolder(const std::string& name) const { return (m_folder / name).string(); }
    std::string BytesOf(const std::string& name) const {
        std::ifstream stream(m_folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    LinkHub hub;  // A is end 0
    End a;
    End b;

private:
    std::filesystem::path m_folder;
};
