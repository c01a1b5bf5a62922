// The end of a USB link on the other machine, where a script started usb_end, which obeys words:
//
//     OtherMachine b;
//     EXPECT_EQ(b.Do({"connect", hub.DeviceText(1)}), ...);
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "peers/LinkSocket.h"

class OtherMachine {
public:
    // Tells it where to connect to, by the file that the environment variable USB_LINK_PORT_FILE names. Throws
    // std::runtime_error if it does not come.
    OtherMachine() {
        const char* const file = std::getenv("USB_LINK_PORT_FILE");
        if (file == nullptr) throw std::runtime_error("started without the other machine: use scripts/two-machines");
        const LinkSocket listener = LinkSocket::Listen();
        const std::string draft = std::string(file) + ".new";
        std::ofstream(draft) << listener.Port() << '\n';
        MoveFileExA(draft.c_str(), file, MOVEFILE_REPLACE_EXISTING);  // as a whole, since it is looked for
        m_connection = listener.Accept(100000);
        if (!m_connection.IsOpen()) throw std::runtime_error("the other machine does not come");
    }

    std::string Do(const std::vector<std::string>& words) const {
        std::string line;
        for (const std::string& word : words) line += (line.empty() ? "" : "\t") + word;
        m_connection.SendLine(line);
        return m_connection.ReceiveLine(100000).value_or("no answer");
    }

private:
    LinkSocket m_connection;
};

// Data that shows where a byte stood and which of several pieces it comes from.
inline std::string Pattern(size_t size, unsigned seed) {
    std::string data(size, '\0');
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>(i * 31 + (i >> 8) * 7 + (i >> 16) + seed);
    return data;
}
