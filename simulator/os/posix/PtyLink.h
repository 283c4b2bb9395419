#pragma once

#include <optional>
#include <string>
#include <vector>

#include <poll.h>

#include "simulator/Simulator.h"
#include "simulator/os/posix/Descriptor.h"

namespace drx9::sim {

/// A pseudo-terminal and the symbolic link to it. While nobody has it open, the far side is held open here: a
/// pseudo-terminal that nobody holds reports "hung up" without end.
class PtyLink {
public:
    /// `simulator` outlives the link; `linkPath` may be empty.
    PtyLink(Simulator& simulator, std::string linkPath);
    ~PtyLink() { unplug(); }
    PtyLink(const PtyLink&) = delete;
    PtyLink& operator=(const PtyLink&) = delete;

    /// Makes the pseudo-terminal and says its path. Throws std::runtime_error.
    void plug();
    void unplug();
    /// Hangs up: this pseudo-terminal vanishes and another takes its place.
    void drop();

    void watch(std::vector<pollfd>& polled) const;
    double nextDue() const;
    void serve(double now);

private:
    bool hold();
    std::string linkTarget() const;
    void link() const;
    void receive(double now);
    void left();
    void send(double now);

    Simulator& simulator_;
    std::string linkPath_;
    std::string path_;
    Descriptor master_;
    Descriptor held_;          ///< the far side, while nobody else is known to have it
    std::optional<Line> line_; ///< from the first byte of one who opened it
};

} // namespace drx9::sim
