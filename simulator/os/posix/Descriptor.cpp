#include "simulator/os/posix/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace drx9::sim {

void Descriptor::reset() {
    if (value_ >= 0) {
        ::close(std::exchange(value_, -1));
    }
}

void failWithReason(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

void prepare(int descriptor) {
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

Got readSome(int descriptor, std::string& bytes) {
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
        bytes.assign(buffer.data(), static_cast<std::size_t>(count));
        return Got::Bytes;
    }
    return count < 0 && (errno == EAGAIN || errno == EINTR) ? Got::Nothing : Got::End;
}

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

} // namespace drx9::sim
