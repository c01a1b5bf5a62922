// What tests of the USB link share: a folder that both machines and the test see, and the test itself as the other end.
#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>

#include "peers/Machines.h"
#include "transports/HexBytes.h"

// One for each test, removed with what is in it.
class SharedFolder {
public:
    SharedFolder() {
        const std::filesystem::path shared = _wgetenv(L"USB_LINK_FOLDER");
        m_path = shared / testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directory(m_path);
    }
    ~SharedFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    SharedFolder(const SharedFolder&) = delete;
    SharedFolder& operator=(const SharedFolder&) = delete;

    std::string Path(const std::string& name) const { return (m_path / name).make_preferred().string(); }
    std::string BytesOf(const std::string& name) const {
        std::ifstream stream(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path m_path;
};

// The test as the peer of an end, byte by byte.
class RawPeer {
public:
    std::string DeviceText() const { return "port " + std::to_string(m_listener.Port()); }
    void Accept() { m_link = m_listener.Accept(kEndMilliseconds); }
    void Send(std::string_view hex) {
        const std::string bytes = FromHex(hex);
        m_link.SendAll(bytes.data(), bytes.size());
    }
    // The bytes that come next.
    std::string Receive(size_t bytes) {
        std::string got(bytes, '\0');
        EXPECT_TRUE(m_link.ReceiveAll(got.data(), bytes, kEndMilliseconds));
        return ToHex(got);
    }
    void Expect(std::string_view hex) {
        const std::string bytes = FromHex(hex);
        EXPECT_EQ(Receive(bytes.size()), ToHex(bytes)) << hex;
    }
    void Cut() { m_link = LinkSocket(); }

private:
    LinkSocket m_listener = LinkSocket::Listen();
    LinkSocket m_link;
};
