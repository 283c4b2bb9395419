#pragma once

#ifndef _WIN32

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <string>

namespace drx9::testing_qt {

/// A pseudo-terminal: the program's end is a path, the instrument's end is read and written here. `folder` is
/// a program's folder in which COM1 is a link to it.
class Pty {
public:
    Pty()
        : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        ::grantpt(master_);
        ::unlockpt(master_);
        path_ = ::ptsname(master_);
        QFile::link(QString::fromStdString(path_), folder_.filePath("COM1"));
    }
    ~Pty() { vanish(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    const std::string& path() const { return path_; }
    std::string folder() const { return folder_.path().toStdString(); }

    bool write(const std::string& bytes) {
        return ::write(master_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }
    /// What the program has sent since the last read.
    std::string read() {
        char bytes[4096];
        const ssize_t count = ::read(master_, bytes, sizeof bytes);
        return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : std::string();
    }
    /// The terminal's line settings as the program left them.
    termios settings() const {
        termios result{};
        ::tcgetattr(master_, &result);
        return result;
    }
    /// The cable is pulled.
    void vanish() {
        if (master_ >= 0)
            ::close(master_);
        master_ = -1;
    }

private:
    int master_;
    std::string path_;
    QTemporaryDir folder_;
};

} // namespace drx9::testing_qt

#endif
