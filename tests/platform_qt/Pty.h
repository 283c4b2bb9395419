#pragma once

#ifndef _WIN32

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

namespace drx9::testing_qt {

/// A pseudo-terminal: the program's end is a path, the instrument's end is read and written here. `folder` is
/// a program's folder in which COM1 is a link to it.
class Pty {
public:
    Pty() {
        ::grantpt(master);
        ::unlockpt(master);
        path = ::ptsname(master);
        leadTo(path);
    }
    ~Pty() { vanish(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    /// COM1 is that device from now on.
    void leadTo(const std::string& device) const {
        QFile::remove(folder_.filePath("COM1"));
        QFile::link(QString::fromStdString(device), folder_.filePath("COM1"));
    }
    std::string folder() const { return folder_.path().toStdString(); }
    bool write(const std::string& bytes) const {
        return ::write(master, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }
    /// What the program has sent since the last read.
    std::string read() const {
        char bytes[4096];
        const ssize_t count = ::read(master, bytes, sizeof bytes);
        return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : std::string();
    }
    /// The cable is pulled.
    void vanish() {
        if (master >= 0) {
            ::close(master);
        }
        master = -1;
    }

    int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    std::string path;

private:
    QTemporaryDir folder_;
};

} // namespace drx9::testing_qt

#endif
