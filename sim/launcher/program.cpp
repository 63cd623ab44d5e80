#include "sim/launcher/program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "sim/launcher/preload_environment.h"
#include "sim/transport/call_server.h"
#include "sim/transport/descriptor_passing.h"
#include "sim/transport/preload_channel.h"
#include "sim/transport/seccomp.h"

namespace qrx::sim {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPatienceWithProgram{3000};  // between a signal passed on and SIGKILL
constexpr milliseconds kPatienceWithRest{1000};     // for processes that the program leaves behind

void (*action_on_full_files)(int) = SIG_DFL;  // that programs start with

// What the child tells: how far it came, and errno.
struct StartReport {
    enum class Stage : QRX_U32 { filter, exec };
    Stage stage = Stage::filter;
    int error = 0;
};

std::span<QRX_U8> bytes_of(StartReport& report)
{
    return {reinterpret_cast<QRX_U8*>(&report), sizeof report};
}

// The signals that the launcher takes from a descriptor while the program runs; the program starts with the old mask.
class BlockedSignals {
public:
    BlockedSignals()
    {
        sigset_t taken;
        sigemptyset(&taken);
        for (const int signal : {SIGCHLD, SIGTERM, SIGHUP, SIGINT, SIGQUIT}) {
            sigaddset(&taken, signal);
        }
        (void)sigprocmask(SIG_BLOCK, &taken, &old_);
        fd_.reset(signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK));
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { restore(); }

    void restore() const { (void)sigprocmask(SIG_SETMASK, &old_, nullptr); }
    [[nodiscard]] int descriptor() const { return fd_.get(); }
    // The next signal, or 0.
    [[nodiscard]] int next() const
    {
        signalfd_siginfo info{};
        return read(fd_.get(), &info, sizeof info) == static_cast<ssize_t>(sizeof info)
                   ? static_cast<int>(info.ssi_signo)
                   : 0;
    }

private:
    sigset_t old_{};
    UniqueFd fd_;
};

// In the child: becomes the program. Only async-signal-safe calls, as the parent may have threads.
[[noreturn]] void become(const BlockedSignals& signals, int socket, bool filtered, char* const* arguments)
{
    StartReport report;
    if (filtered) {
        const UniqueFd listener = install_seccomp_filter();
        report.error = listener ? 0 : errno;
        if (!send_with_descriptor(socket, bytes_of(report), listener.get()) || !listener) {
            _exit(kExitOwnFailure);
        }
    }
    signals.restore();
    (void)signal(SIGXFSZ, action_on_full_files);
    execvp(arguments[0], arguments);
    report = {StartReport::Stage::exec, errno};
    (void)send_with_descriptor(socket, bytes_of(report), -1);
    _exit(report.error == ENOENT ? kExitNotFound : kExitCannotRun);
}

int exit_value(int status)
{
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// The child from its end seen from the parent.
class Running {
public:
    Running(pid_t child, Channel& channel, const BlockedSignals& signals, CallServer& server, Attendant* attendant)
        : child_(child), channel_(channel), signals_(signals), server_(server), attendant_(attendant)
    {
    }

    // Serves until the program has ended. Its wait status.
    int serve()
    {
        while (!status_) {
            serve_once(kill_at_);
            if (kill_at_ && Clock::now() >= *kill_at_) {
                (void)kill(child_, SIGKILL);
                kill_at_.reset();
            }
        }
        // What it left behind may still need answers for its last steps.
        const Clock::time_point end = Clock::now() + kPatienceWithRest;
        while (!channel_.deserted() && Clock::now() < end) {
            serve_once(end);
        }
        return *status_;
    }

private:
    void serve_once(std::optional<Clock::time_point> until)
    {
        int timeout = -1;
        if (until) {
            const auto left = std::chrono::duration_cast<milliseconds>(*until - Clock::now()).count();
            timeout = left > 0 ? static_cast<int>(left) + 1 : 0;
        }
        std::array<pollfd, 3> waits = {{{channel_.descriptor(), POLLIN, 0},
                                        {signals_.descriptor(), POLLIN, 0},
                                        {attendant_ == nullptr ? -1 : attendant_->descriptor(), POLLIN, 0}}};
        if (poll(waits.data(), waits.size(), timeout) <= 0) {
            return;
        }
        if (attendant_ != nullptr) {
            attendant_->tick();
        }
        if (waits[2].revents != 0) {
            attendant_->serve();
            server_.machine_changed();
        }
        if ((waits[0].revents & POLLIN) != 0) {
            channel_.serve();
        } else if ((waits[0].revents & (POLLHUP | POLLERR)) != 0 && waits[1].revents == 0) {
            // Nobody is left under the filter, so the program's end is all there is to wait for.
            (void)poll(&waits[1], 1, timeout);
        }
        if (waits[1].revents != 0) {
            take_signals();
        }
    }

    void take_signals()
    {
        while (const int signal = signals_.next()) {
            if (signal == SIGCHLD) {
                int status = 0;
                if (!status_ && waitpid(child_, &status, WNOHANG) == child_) {
                    status_ = status;
                }
            } else if ((signal == SIGTERM || signal == SIGHUP) && !status_) {
                (void)kill(child_, signal);
                if (!kill_at_) {
                    kill_at_ = Clock::now() + kPatienceWithProgram;
                }
            }
        }
    }

    pid_t child_;
    Channel& channel_;
    const BlockedSignals& signals_;
    CallServer& server_;
    Attendant* attendant_;  // may be null
    std::optional<int> status_;
    std::optional<Clock::time_point> kill_at_;
};

void complain(const std::string& text)
{
    (void)std::fprintf(stderr, "qrx_sim: %s\n", text.c_str());
}

// The way in to take: what was asked for, or what works.
Transport choose(const ProgramOptions& options)
{
    std::string why;
    if (options.transport != Transport::preload) {
        why = probe_seccomp();
        if (why.empty()) {
            if (options.verbose) {
                complain("transport: seccomp user notification");
            }
            return Transport::seccomp;
        }
        if (options.transport == Transport::seccomp) {
            throw std::runtime_error("seccomp user notification does not work here (" + why +
                                     "); --transport preload may");
        }
    }
    if (options.verbose) {
        complain("transport: preload library" + (why.empty() ? why : " (no seccomp user notification: " + why + ")"));
    }
    return Transport::preload;
}

int start_and_serve(Host& host, const ProgramOptions& options, Attendant* attendant)
{
    const Transport transport = choose(options);
    CallServer server(host);
    std::unique_ptr<Channel> channel;
    std::optional<PreloadEnvironment> environment;
    if (transport == Transport::preload) {
        auto preload = std::make_unique<PreloadChannel>(server);
        environment.emplace(preload->socket_path());
        channel = std::move(preload);
    }
    std::vector<std::string> command = options.command;
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    std::array<int, 2> sockets{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
        throw std::runtime_error(std::string("no socket: ") + std::strerror(errno));
    }
    const UniqueFd ours(sockets[0]);
    UniqueFd theirs(sockets[1]);
    const BlockedSignals signals;
    (void)std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error(std::string("cannot start a process: ") + std::strerror(errno));
    }
    if (child == 0) {
        become(signals, theirs.get(), transport == Transport::seccomp, arguments.data());
    }
    theirs.reset();
    environment.reset();
    StartReport report;
    if (transport == Transport::seccomp) {
        Received received = receive_with_descriptor(ours.get(), bytes_of(report));
        if (received.length != static_cast<long>(sizeof report) || !received.fd) {
            (void)waitpid(child, nullptr, 0);
            throw std::runtime_error(std::string("the kernel refuses a seccomp listener: ") +
                                     std::strerror(report.error));
        }
        channel = std::make_unique<SeccompChannel>(std::move(received.fd), server);
    }
    const int status = Running(child, *channel, signals, server, attendant).serve();
    if (receive_with_descriptor(ours.get(), bytes_of(report)).length == static_cast<long>(sizeof report)) {
        complain("cannot run '" + options.command[0] + "': " + std::strerror(report.error));
    }
    return exit_value(status);
}

}  // namespace

void outlive_full_files()
{
    action_on_full_files = signal(SIGXFSZ, SIG_IGN);
}

bool fill_closed_streams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const int unusable = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (fcntl(stream, F_GETFD) == -1 && open("/dev/null", unusable) != stream) {
            return false;
        }
    }
    return true;
}

int run_program(Host& host, const ProgramOptions& options, Attendant* attendant)
{
    try {
        return start_and_serve(host, options, attendant);
    } catch (const std::exception& failure) {
        complain(failure.what());
        return kExitOwnFailure;
    }
}

}  // namespace qrx::sim
