#include "sim/launcher/control_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace qrx::sim {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestRequest = std::size_t{16} << 20;
constexpr char kGood = '+';
constexpr char kBad = '-';

Result<sockaddr_un> address_of(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return Failure{"the path of a control socket has at most " + std::to_string(sizeof address.sun_path - 1) +
                       " letters"};
    }
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    return address;
}

UniqueFd connect_to(const sockaddr_un& address)
{
    UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (socket && ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        socket.reset();
        errno = error;
    }
    return socket;
}

bool send_all(int socket, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

// All that comes until the other side has no more to say, or nothing when it does not come to an end.
std::optional<std::string> receive_all(int socket, std::size_t longest)
{
    std::string all;
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t got = ::recv(socket, piece.data(), piece.size(), 0);
        if (got == 0) {
            return all;
        }
        if (got < 0 || all.size() + static_cast<std::size_t>(got) > longest) {
            return std::nullopt;
        }
        all.append(piece.data(), static_cast<std::size_t>(got));
    }
}

// A request in flight: controller, command and argument, each but the last with a zero byte behind it.
std::string pack(const ControlRequest& request)
{
    const std::string number = request.controller ? std::to_string(*request.controller) : "";
    return number + '\0' + request.command + '\0' + request.argument;
}

std::optional<ControlRequest> unpack(const std::string& bytes)
{
    const std::size_t first = bytes.find('\0');
    const std::size_t second = first == std::string::npos ? first : bytes.find('\0', first + 1);
    if (second == std::string::npos || first > 9 ||
        bytes.substr(0, first).find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    ControlRequest request;
    if (first != 0) {
        request.controller = static_cast<unsigned>(std::stoul(bytes.substr(0, first)));
    }
    request.command = bytes.substr(first + 1, second - first - 1);
    request.argument = bytes.substr(second + 1);
    return request;
}

// Nobody can keep the machine waiting.
void limit_patience(int socket)
{
    const timeval patience{2, 0};
    (void)setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    (void)setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
}

[[noreturn]] void fail(const std::string& path, const std::string& why)
{
    throw std::runtime_error("--control: cannot listen at '" + path + "': " + why);
}

}  // namespace

ControlSocket::ControlSocket(Machine& machine, const std::string& path, bool clock_runs)
    : machine_(machine), clock_runs_(clock_runs)
{
    if (path.empty()) {
        std::string pattern = (fs::temp_directory_path() / "qrx_sim_ctl.XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            fail(pattern, std::strerror(errno));
        }
        directory_ = pattern;
        path_ = directory_ + "/control";
    } else {
        path_ = fs::absolute(path).string();
    }
    const Result<sockaddr_un> address = address_of(path_);
    if (!address) {
        fail(path, address.error());
    }
    if (connect_to(*address)) {
        fail(path, "another simulator answers there");
    }
    std::error_code ignored;
    if (errno == ECONNREFUSED && fs::is_socket(path_, ignored)) {
        (void)fs::remove(path_, ignored);  // left behind by one that was killed
    }
    listener_.reset(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const mode_t before = umask(077);
    const bool bound =
        listener_ && bind(listener_.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof(sockaddr_un)) == 0;
    const int error = errno;
    (void)umask(before);
    if (!bound || listen(listener_.get(), 16) != 0) {
        const std::string why = std::strerror(bound ? errno : error);
        if (!directory_.empty()) {
            (void)fs::remove_all(directory_, ignored);
        }
        fail(path.empty() ? path_ : path, why);
    }
    (void)setenv(kControlVariable, path_.c_str(), 1);
}

ControlSocket::~ControlSocket()
{
    std::error_code ignored;
    (void)fs::remove(path_, ignored);
    if (!directory_.empty()) {
        (void)fs::remove(directory_, ignored);
    }
}

void ControlSocket::tick()
{
    if (!clock_runs_) {
        return;
    }
    const auto passed = std::chrono::duration_cast<Clock::Duration>(std::chrono::steady_clock::now() - ticked_);
    if (passed > Clock::Duration::zero()) {
        ticked_ += passed;  // what is less than a millisecond is kept for the next time
        machine_.advance(passed);
    }
}

void ControlSocket::serve()
{
    const UniqueFd client(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client) {
        return;  // it has gone already
    }
    limit_patience(client.get());
    const std::optional<std::string> bytes = receive_all(client.get(), kLongestRequest);
    const std::optional<ControlRequest> request = bytes ? unpack(*bytes) : std::nullopt;
    const Result<std::string> answer =
        request ? carry_out(machine_, *request) : Result<std::string>(Failure{"this is no request"});
    (void)send_all(client.get(), answer ? kGood + *answer : kBad + answer.error());
}

Result<std::string> ask(const std::string& path, const ControlRequest& request, bool& reached)
{
    reached = false;
    const Result<sockaddr_un> address = address_of(path);
    if (!address) {
        return Failure{address.error()};
    }
    const UniqueFd socket = connect_to(*address);
    if (!socket) {
        return Failure{"no simulator answers at '" + path + "': " + std::strerror(errno)};
    }
    if (!send_all(socket.get(), pack(request)) || shutdown(socket.get(), SHUT_WR) != 0) {
        return Failure{"the simulator at '" + path + "' does not listen"};
    }
    const std::optional<std::string> answer = receive_all(socket.get(), ~std::size_t{0});
    if (!answer || answer->empty()) {
        return Failure{"the simulator at '" + path + "' gave no answer"};
    }
    reached = true;
    const std::string text = answer->substr(1);
    return answer->front() == kGood ? Result<std::string>(text) : Result<std::string>(Failure{text});
}

}  // namespace qrx::sim
