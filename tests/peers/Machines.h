// Two machines with one end of a USB link each: this one and the other, where a script started usb_end. Both get their
// orders from here, as two programs, so that each test has two fresh processes.
//
//     End a = Machines().Take("A");                  // this machine's
//     a.Do({"device", "listen"});
//     EXPECT_EQ(a.Do({"connect", "greet"}), "0");
#pragma once

#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "peers/EndWords.h"
#include "peers/LinkSocket.h"

constexpr DWORD kEndMilliseconds = 100000;

class End {
public:
    End(LinkSocket work, LinkSocket watch) : m_work(std::move(work)), m_watch(std::move(watch)) {}

    // The answer; "no answer" if there is none in time.
    std::string Do(const Words& words) {
        Begin(words);
        return Answer();
    }
    // The two halves of it, for what waits for the other end.
    void Begin(const Words& words) { m_work.SendLine(Line(words)); }
    std::string Answer(DWORD milliseconds = kEndMilliseconds) {
        return m_work.ReceiveLine(milliseconds).value_or("no answer");
    }
    // At once, whatever the end is doing: "events", "status", or "await" with what is to come up in its events or log.
    std::string Watch(const Words& words) {
        m_watch.SendLine(Line(words));
        return m_watch.ReceiveLine(kEndMilliseconds).value_or("no answer");
    }
    // False, with the log on the standard output, if it does not come up.
    bool Await(const std::string& text) {
        const std::string answer = Watch({"await", text});
        if (answer != "yes") std::printf("%s\n", answer.c_str());
        return answer == "yes";
    }

private:
    static std::string Line(const Words& words);

    LinkSocket m_work;
    LinkSocket m_watch;
};

class LinkMachines {
public:
    // Tells the other machine, "B", where to connect to, by the file that the environment variable USB_LINK_PORT_FILE
    // names. The ends of this one, "A", are started when the first is wanted. They end when the process does.
    LinkMachines();

    // A fresh process of that machine; throws std::runtime_error if none comes.
    End Take(const std::string& name);

private:
    const std::wstring m_portFile;
    LinkSocket m_listener = LinkSocket::Listen();
    bool m_isStarted = false;
    std::map<std::string, std::deque<LinkSocket>> m_waiting;  // by greeting
};

// Those of this process.
LinkMachines& Machines();
