#pragma once

#include <optional>
#include <vector>

#include <poll.h>

#include "simulator/Options.h"
#include "simulator/Simulator.h"
#include "simulator/os/posix/Descriptor.h"

namespace drx9::sim {

/// A listening port and its one client. The newest client wins: a program that was killed or lost its cable
/// may come back at once.
class TcpLink {
public:
    /// `simulator` outlives the link.
    TcpLink(Simulator& simulator, TcpAddress address, bool quiet);

    /// Listens and says so; the port that was bound first is kept forever. Throws std::runtime_error.
    void plug();
    void unplug();
    /// Ends the connection, if there is one.
    void drop();

    void watch(std::vector<pollfd>& polled) const;
    /// When serve() has to be called even if no descriptor is ready.
    double nextDue() const;
    /// Moves whatever can be moved; never waits.
    void serve(double now);

private:
    void note(const char* text) const;
    std::string boundPort() const;
    void accept(double now);
    void receive(double now);
    void send(double now);

    Simulator& simulator_;
    TcpAddress address_;
    bool quiet_;
    Descriptor listener_;
    Descriptor client_;
    std::optional<Line> line_; ///< while there is a client
};

} // namespace drx9::sim
