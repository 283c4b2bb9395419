// The real program and the real library, over real links.
#ifndef _WIN32

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <tuple>

#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/Bench.h"
#include "simulator/UsbBridgeAbi.h"

namespace drx9::sim {
namespace {

constexpr int kPatience = 3000; // ms

/// What comes on `descriptor` until `enough` says so; with "<end>" behind it if the other side ended first.
template<class Enough>
std::string readUntil(int descriptor, Enough enough, std::size_t atOnce = 512) {
    std::string bytes;
    while (!enough(bytes)) {
        pollfd polled{descriptor, POLLIN, 0};
        if (::poll(&polled, 1, kPatience) != 1) {
            return bytes + "<nothing>";
        }
        std::array<char, 512> buffer{};
        const ssize_t count = ::read(descriptor, buffer.data(), atOnce);
        if (count <= 0) {
            return bytes + "<end>";
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return bytes;
}

bool isWholeReply(const std::string& bytes) {
    return bytes.size() > 1 && bytes.size() == static_cast<unsigned char>(bytes[1]) - 31U;
}

/// A running drx9sim; its standard error is left to the test's.
class Program {
public:
    explicit Program(std::vector<std::string> arguments) {
        int in[2];
        int out[2];
        EXPECT_EQ(::pipe(in) + ::pipe(out), 0);
        for (const int descriptor : {in[0], in[1], out[0], out[1]}) {
            ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        }
        std::signal(SIGPIPE, SIG_IGN); // a client that writes to a dropped connection only gets an error
        arguments.insert(arguments.begin(), DRX9_BIN_DIR "/drx9sim");
        arguments.emplace_back("--quiet");
        std::vector<char*> words;
        for (std::string& argument : arguments) {
            words.push_back(argument.data());
        }
        words.push_back(nullptr);
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(in[0], 0);
            ::dup2(out[1], 1);
            ::execv(words[0], words.data());
            ::_exit(127);
        }
        ::close(in[0]);
        ::close(out[1]);
        in_ = in[1];
        out_ = out[0];
    }
    ~Program() {
        if (pid_ > 0) {
            end(SIGKILL);
        }
        closeInput();
        ::close(out_);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// The next line that it says.
    std::string line() const {
        std::string text = readUntil(
            out_, [](const std::string& bytes) { return bytes.ends_with('\n'); }, 1);
        text.pop_back();
        return text;
    }

    std::string tell(const std::string& command) const {
        const std::string text = command + "\n";
        EXPECT_EQ(::write(in_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        return line();
    }

    void closeInput() {
        if (in_ >= 0) {
            ::close(std::exchange(in_, -1));
        }
    }

    bool runs() { return ::waitpid(pid_, nullptr, WNOHANG) == 0; }

    /// Exit status, or -1 when a signal ended it.
    int wait() {
        int status = 0;
        ::waitpid(std::exchange(pid_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    int end(int signal) {
        ::kill(pid_, signal);
        return wait();
    }

private:
    pid_t pid_ = -1;
    int in_ = -1;
    int out_ = -1;
};

/// One end of a link, closed with it.
class Client {
public:
    explicit Client(int descriptor)
        : descriptor_(descriptor) {}
    ~Client() { ::close(descriptor_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool connected() const { return descriptor_ >= 0; }
    /// The answer to one command; "<end>" when the link was closed.
    std::string ask(std::string_view command) const {
        const std::string packet = commandPacket(command);
        [[maybe_unused]] const ssize_t written = ::write(descriptor_, packet.data(), packet.size());
        const std::string bytes = readUntil(descriptor_, isWholeReply);
        return bytes.ends_with('>') ? bytes : unwrapped(bytes);
    }
    std::string untilEnd() const {
        return readUntil(descriptor_, [](const std::string&) { return false; });
    }

private:
    int descriptor_;
};

/// `announced` is "tcp 127.0.0.1:PORT".
Client tcpClient(const std::string& announced) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port =
        htons(static_cast<std::uint16_t>(std::stoi(announced.substr(announced.rfind(':') + 1))));
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const bool refused = ::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0;
    return Client(refused ? (::close(socket), -1) : socket);
}

Client terminal(const std::filesystem::path& path) {
    return Client(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

std::filesystem::path freshPath(const char* name) {
    const auto path = std::filesystem::temp_directory_path() / (name + std::to_string(::getpid()));
    std::filesystem::remove(path);
    return path;
}

TEST(Program, ServesOneTcpClientAfterAnother) {
    Program program({"--tcp", "0", "--films", "9"});
    const std::string announced = program.line();
    ASSERT_TRUE(announced.starts_with("tcp 127.0.0.1:")) << announced;
    {
        const Client first = tcpClient(announced);
        EXPECT_EQ(first.ask("@"), "ADRX-9 Ver 4.08");
        EXPECT_EQ(first.ask("U1"), "A");
        const Client newest = tcpClient(announced);
        EXPECT_EQ(newest.ask("U?"), "A1");
        EXPECT_EQ(first.untilEnd(), "<end>") << "the newest client wins";
    }
    const Client again = tcpClient(announced);
    EXPECT_EQ(again.ask("J"), "ASENSORS 6");
    EXPECT_EQ(program.tell("faults lose=1"), "ok faults lose=1");
    EXPECT_EQ(program.tell("faults none"), "ok faults none");
    EXPECT_EQ(program.tell("drop"), "ok drop");
    EXPECT_EQ(again.untilEnd(), "<end>");
    EXPECT_EQ(tcpClient(announced).ask("J"), "ASENSORS 6");
    EXPECT_EQ(program.tell("count J"), "ok count J 2");
    EXPECT_EQ(program.tell("unplug"), "ok unplug");
    EXPECT_FALSE(tcpClient(announced).connected());
    EXPECT_EQ(program.tell("plug"), announced) << "the same port again";
    EXPECT_EQ(program.line(), "ok plug");
    program.closeInput();
    EXPECT_EQ(tcpClient(announced).ask("U?"), "A1") << "the instrument outlives its input and its cable";
    EXPECT_TRUE(program.runs());
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST(Program, ServesAPseudoTerminalBesideTcp) {
    const std::filesystem::path link = freshPath("drx9sim-pty");
    Program program({"--tcp", "0", "--pty", link.string(), "--baud", "115200"});
    const std::string tcp = program.line();
    const std::string pty = program.line();
    ASSERT_EQ(pty, "pty " + std::filesystem::read_symlink(link).string());
    for (int visit = 0; visit < 3; ++visit) { // opened and closed again and again
        const Client visitor = terminal(link);
        EXPECT_EQ(visitor.ask("@"), "ADRX-9 Ver 4.12");
        EXPECT_EQ(visitor.ask(visit == 1 ? "U1" : "S"), "A");
    }
    EXPECT_EQ(tcpClient(tcp).ask("U?"), "A1") << "one instrument behind both";
    {
        const Client cut = terminal(link);
        EXPECT_EQ(cut.ask("U?"), "A1");
        EXPECT_EQ(program.tell("drop").substr(0, 4), "pty ");
        EXPECT_EQ(program.line(), "ok drop");
        EXPECT_EQ(cut.ask("U?"), "<end>") << "hung up";
        EXPECT_EQ(terminal(link).ask("U?"), "A1") << "and back under the same link";
    }
    EXPECT_EQ(program.end(SIGINT), 0);
    EXPECT_FALSE(std::filesystem::is_symlink(link));
}

TEST(Program, KeepsTheRealPaceOfALine) {
    Program program({"--tcp", "0", "--baud", "1200"});
    const Client client = tcpClient(program.line());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.ask("@"), "ADRX-9 Ver 4.12");
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken.count(), (5 + 19) * 10.0 / 1200);
    EXPECT_EQ(program.tell("quit"), "ok quit");
    EXPECT_EQ(program.wait(), 0);
}

TEST(Program, RefusesWhatItCannotDo) {
    EXPECT_EQ(Program({"--sensors", "9"}).wait(), 2);
    EXPECT_EQ(Program({"--tcp", "203.0.113.1:0"}).wait(), 1) << "not this machine's address";
    const std::filesystem::path file = freshPath("drx9sim-file");
    std::filesystem::create_directory(file);
    EXPECT_EQ(Program({"--pty", file.string()}).wait(), 1) << "what is no link is not replaced";
    EXPECT_TRUE(std::filesystem::is_directory(file));
    std::filesystem::remove(file);
    Program first({"--tcp", "0"});
    const std::string announced = first.line();
    EXPECT_EQ(Program({"--tcp", announced.substr(4)}).wait(), 1);
}

/// The bridge's library, looked up at run time as the operator's program does.
class Library {
public:
    Library() = default;
    ~Library() {
        ::dlclose(handle_);
        ::unsetenv("DRX9SIM_USB");
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template<class Function, class... Arguments>
    int call(Function* /*only its type*/, const char* name, Arguments... arguments) const {
        return reinterpret_cast<Function*>(::dlsym(handle_, name))(arguments...);
    }

private:
#ifdef __APPLE__
    void* handle_ = ::dlopen(DRX9_BIN_DIR "/libSiUSBXp.dylib", RTLD_NOW | RTLD_LOCAL);
#else
    void* handle_ = ::dlopen(DRX9_BIN_DIR "/libSiUSBXp.so", RTLD_NOW | RTLD_LOCAL);
#endif
};

#define CALL(name, ...) library.call(static_cast<decltype(&name)>(nullptr), #name, __VA_ARGS__)

TEST(UsbBridge, CarriesTheInstrument) {
    Program program({"--tcp", "0"});
    const std::string address = program.line().substr(4);
    const Library library;
    std::uint32_t count = 99;
    EXPECT_EQ(CALL(SI_GetNumDevices, &count), 0);
    EXPECT_EQ(count, 0U) << "nothing attached";
    void* handle = nullptr;
    EXPECT_NE(CALL(SI_Open, 0U, &handle), 0);

    ::setenv("DRX9SIM_USB", (address + ",AB12;127.0.0.1:1,DEAD,1234").c_str(), 1);
    std::array<char, 256> text{};
    EXPECT_EQ(CALL(SI_GetNumDevices, &count), 0);
    EXPECT_EQ(count, 2U);
    const std::tuple<unsigned, unsigned, const char*> strings[] = {
        {0, 0, "AB12"}, {0, 4, "83F5"}, {1, 4, "1234"}};
    for (const auto& [device, option, expected] : strings) {
        EXPECT_EQ(CALL(SI_GetProductString, device, text.data(), option), 0);
        EXPECT_STREQ(text.data(), expected);
    }
    EXPECT_NE(CALL(SI_GetProductString, 2U, text.data(), 0U), 0);
    EXPECT_NE(CALL(SI_Open, 1U, &handle), 0) << "no simulator there";

    ASSERT_EQ(CALL(SI_Open, 0U, &handle), 0);
    EXPECT_EQ(CALL(SI_SetBaudRate, handle, 115200U), 0);
    std::string packet = commandPacket("@");
    const auto size = static_cast<std::uint32_t>(packet.size());
    const auto write = [&] { return CALL(SI_Write, handle, packet.data(), size, &count, nullptr); };
    const auto read = [&] { return CALL(SI_Read, handle, text.data(), 252U, &count, nullptr); };
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(count, 0U) << "nothing waits";
    EXPECT_EQ(write(), 0);
    EXPECT_EQ(count, size);
    std::string reply;
    for (int i = 0; i < kPatience && !isWholeReply(reply); ++i) {
        EXPECT_EQ(read(), 0);
        reply.append(text.data(), count);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(unwrapped(reply), "ADRX-9 Ver 4.12");

    EXPECT_EQ(write(), 0); // a reply that nobody wants is flushed away
    std::uint32_t state = 0;
    for (count = 0; count < reply.size(); std::this_thread::yield()) {
        ASSERT_EQ(CALL(SI_CheckRXQueue, handle, &count, &state), 0);
    }
    EXPECT_EQ(CALL(SI_FlushBuffers, handle, '\1', '\1'), 0);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(count, 0U);

    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_NE(read(), 0) << "the cable is out";
    EXPECT_NE(write(), 0);
    EXPECT_NE(CALL(SI_FlushBuffers, handle, '\1', '\1'), 0);
    EXPECT_EQ(CALL(SI_Close, handle), 0);
}

} // namespace
} // namespace drx9::sim

#endif
