#include "simulator/os/posix/PtyLink.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace drx9::sim {

PtyLink::PtyLink(Simulator& simulator, std::string linkPath)
    : simulator_(simulator)
    , linkPath_(std::move(linkPath)) {}

void PtyLink::plug() {
    if (master_.open()) {
        return;
    }
    Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
    if (!master.open() || ::grantpt(master.get()) != 0 || ::unlockpt(master.get()) != 0) {
        failWithReason("cannot make a pseudo-terminal");
    }
    prepare(master.get());
    path_ = ::ptsname(master.get());
    master_ = std::move(master);
    if (!hold()) {
        failWithReason("cannot open " + path_);
    }
    link();
    say("pty " + path_);
}

void PtyLink::unplug() {
    line_.reset();
    held_.reset();
    master_.reset();
    if (!linkPath_.empty() && linkTarget() == path_) {
        ::unlink(linkPath_.c_str());
    }
}

void PtyLink::drop() {
    if (master_.open()) {
        unplug();
        plug();
    }
}

void PtyLink::watch(std::vector<pollfd>& polled) const {
    if (master_.open()) {
        polled.push_back({master_.get(), static_cast<short>(line_ && line_->full() ? 0 : POLLIN), 0});
    }
}

double PtyLink::nextDue() const {
    return line_ ? std::min(line_->nextDue(), simulator_.dropTime(*line_)) : kNever;
}

void PtyLink::serve(double now) {
    receive(now);
    send(now);
    if (line_ && simulator_.dropTime(*line_) <= now) {
        drop();
    }
}

bool PtyLink::hold() {
    held_ = Descriptor(::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!held_.open()) {
        return false;
    }
    termios modes{};
    ::tcgetattr(held_.get(), &modes);
    ::cfmakeraw(&modes);
    ::tcsetattr(held_.get(), TCSANOW, &modes);
    return true;
}

std::string PtyLink::linkTarget() const {
    std::array<char, 4096> target{};
    const ssize_t size = ::readlink(linkPath_.c_str(), target.data(), target.size());
    return size > 0 ? std::string(target.data(), static_cast<std::size_t>(size)) : "";
}

void PtyLink::link() const {
    if (linkPath_.empty()) {
        return;
    }
    if (!linkTarget().empty()) {
        ::unlink(linkPath_.c_str()); // an older link; anything else is left alone and fails below
    }
    if (::symlink(path_.c_str(), linkPath_.c_str()) != 0) {
        failWithReason("cannot make the link " + linkPath_);
    }
}

void PtyLink::receive(double now) {
    std::string bytes;
    while (master_.open() && !(line_ && line_->full())) {
        const Got got = readSome(master_.get(), bytes);
        if (got == Got::Nothing) {
            return;
        }
        if (got == Got::End) {
            left();
            return;
        }
        if (!line_) {
            line_.emplace(simulator_.openLine("pty", now));
        }
        line_->receive(bytes, now);
        send(now);
        held_.reset(); // somebody is there: let us notice when they leave
    }
}

/// Where the one who left had it to themselves and never gave that up, nobody can open it again: make
/// another.
void PtyLink::left() {
    line_.reset();
    if (!hold()) {
        drop();
    }
}

void PtyLink::send(double now) {
    while (line_) {
        const std::optional<std::string> bytes = line_->takeDue(now);
        if (!bytes) {
            return;
        }
        // As on a wire, what nobody takes is lost.
        [[maybe_unused]] const ssize_t sent = ::write(master_.get(), bytes->data(), bytes->size());
    }
}

} // namespace drx9::sim
