#pragma once
#include "CommLink.h"
#include "ConsoleState.h"
#include "FakeCommPort.h"
#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <optional>

// The receive-path fuzzer. Byte 0 of an input picks the protocol, the bulk
// screen and its program option, byte 1 the state, byte 2 the firmware; the
// rest arrives at the port in pieces, each led by its length (255: two more
// length bytes follow). A run aborts when the receive buffer grows past any
// reply the link can wait for.
//
// The console state and its controller image are built once; each input
// starts from a copy of their first values and from a new link object (a few
// timers), which is what a freshly started console has.
class ReceiveFuzzer {
public:
    explicit ReceiveFuzzer(const QString &home);
    void run(const uint8_t *data, size_t size);
    // What the last input left behind: the scheduler's variables, the
    // machines, the receive buffer, the frames sent and every table.
    QByteArray outcome();

private:
    void reset();

    ConsoleState m_state;
    ConsoleState m_fresh; // never run: the values every input starts from
    QList<ControllerImage> m_freshImages; // m_fresh's image under each firmware of the inputs
    FakeCommPort m_port;
    std::optional<CommLink> m_link;
    unsigned m_runs = 0;
};
