#pragma once

#include <string>
#include <utility>

namespace drx9::sim {

/// Owns a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value)
        : value_(value) {}
    Descriptor(Descriptor&& other) noexcept
        : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        other.reset();
        return *this;
    }
    ~Descriptor() { reset(); }

    void reset();
    int get() const { return value_; }
    bool open() const { return value_ >= 0; }

private:
    int value_ = -1;
};

/// Throws std::runtime_error: `what` and the system's reason.
[[noreturn]] void failWithReason(const std::string& what);

/// Reads and writes on `descriptor` never wait, and programs started from here do not inherit it.
void prepare(int descriptor);

/// What a read found: bytes, nothing yet, or the other end gone.
enum class Got { Bytes, Nothing, End };

/// `bytes` is replaced when there are any.
Got readSome(int descriptor, std::string& bytes);

/// One line on standard output, at once.
void say(const std::string& line);

} // namespace drx9::sim
