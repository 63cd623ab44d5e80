// A program that the tests run on the stub machine: one action, named by its first argument. It says on standard
// output what came of it.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "api/src/interface/wire/nvme_ioctl.h"
#include "sim/transport/call_kind.h"
#include "sim/transport/device_ioctl.h"

namespace {

using Bytes = std::vector<unsigned char>;

int open_node(const char* path = "/dev/nvme0")
{
    return open(path, O_RDWR | O_CLOEXEC);
}

QRX_U64 address_of(const void* place)
{
    return reinterpret_cast<std::uintptr_t>(place);
}

nvme_admin_cmd command_with(Bytes& data)
{
    nvme_admin_cmd command{};
    command.opcode = 0xe2;
    command.nsid = 0x11;
    command.cdw2 = 0x22;
    command.cdw3 = 0x33;
    command.addr = address_of(data.data());
    command.data_len = static_cast<QRX_U32>(data.size());
    command.cdw10 = 0xa0;
    command.cdw11 = 0xa1;
    command.cdw15 = 0xdead;
    command.timeout_ms = 1234;
    return command;
}

// What an ioctl came to: its value, or the name of its error.
void say(int value)
{
    if (value < 0) {
        std::printf("%s\n", strerrorname_np(errno));
    } else {
        std::printf("%d\n", value);
    }
}

void send(int fd)
{
    Bytes data(8, 'a');
    nvme_admin_cmd command = command_with(data);
    const int value = ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command);
    say(value);
    std::printf("%x %.8s\n", command.result, reinterpret_cast<const char*>(data.data()));
}

int command()
{
    send(open_node());
    return 0;
}

int write_command()
{
    Bytes data(8, 'a');
    nvme_admin_cmd command = command_with(data);
    command.opcode = 0x11;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    std::printf("%.8s\n", reinterpret_cast<const char*>(data.data()));
    return 0;
}

int wide_command()
{
    struct {
        nvme_admin_cmd command;
        QRX_U64 result;
    } wide{};
    Bytes data(8, 'a');
    wide.command = command_with(data);
    wide.result = ~0ULL;
    say(ioctl(open_node(), qrx::sim::NVME_IOCTL_ADMIN64_CMD, &wide));
    std::printf("%llx %x %.8s\n", static_cast<unsigned long long>(wide.result), wide.command.result,
                reinterpret_cast<const char*>(data.data()));
    return 0;
}

int status()
{
    Bytes data(8, 'a');
    nvme_admin_cmd command = command_with(data);
    command.cdw14 = 0x4002;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

int driver_error()
{
    Bytes data(8, 'a');
    nvme_admin_cmd command = command_with(data);
    command.cdw13 = ENODEV;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    std::printf("%.8s\n", reinterpret_cast<const char*>(data.data()));
    return 0;
}

int bad_record()
{
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, nullptr));
    return 0;
}

int bad_data()
{
    Bytes data(8);
    nvme_admin_cmd command = command_with(data);
    command.addr = 0x1000;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

// The data begin in memory that is there and end in memory that is not.
int half_bad_data()
{
    constexpr std::size_t kPage = 4096;
    auto* const pages = static_cast<unsigned char*>(
        mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    munmap(pages + kPage, kPage);
    Bytes none;
    nvme_admin_cmd command = command_with(none);
    command.addr = address_of(pages + kPage - 16);
    command.data_len = 32;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

// Memory that can be read but not written, as the place of data from the device.
int read_only_data()
{
    void* const page = mmap(nullptr, 4096, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    Bytes none;
    nvme_admin_cmd command = command_with(none);
    command.addr = address_of(page);
    command.data_len = 16;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

int no_data()
{
    Bytes none;
    nvme_admin_cmd command = command_with(none);
    command.addr = 0x1000;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

int huge_data()
{
    Bytes data(8);
    nvme_admin_cmd command = command_with(data);
    command.data_len = 0xffffffff;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

// The same record again and again, each time with its data elsewhere: what was fetched for one must not serve another.
int moving_data()
{
    const int fd = open_node();
    nvme_admin_cmd command{};
    for (int turn = 0; turn < 3; ++turn) {
        Bytes data(static_cast<std::size_t>(4 + turn), static_cast<unsigned char>('a' + turn));
        command = command_with(data);
        say(ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command));
        std::printf("%.*s\n", static_cast<int>(data.size()), reinterpret_cast<const char*>(data.data()));
    }
    Bytes data(4, 'x');
    for (const char letter : {'k', 'l'}) {
        std::fill(data.begin(), data.end(), static_cast<unsigned char>(letter));
        command = command_with(data);
        say(ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command));
        std::printf("%.4s\n", reinterpret_cast<const char*>(data.data()));
    }
    return 0;
}

int duplicate()
{
    const int fd = open_node();
    const int copy = dup(fd);
    close(fd);
    send(copy);
    return 0;
}

int after_fork()
{
    const int fd = open_node();
    const pid_t child = fork();
    if (child == 0) {
        send(fd);
        std::fflush(stdout);
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    return 0;
}

int after_exec(const char* self)
{
    const int fd = open("/dev/nvme0", O_RDWR);
    const std::string number = std::to_string(fd);
    execl(self, self, "given", number.c_str(), nullptr);
    return 1;
}

// A number that was a node's is another file's now.
int reused_number()
{
    const int fd = open_node();
    send(fd);
    close(fd);
    const int other = open("/dev/null", O_RDWR | O_CLOEXEC);
    Bytes data(8, 'a');
    nvme_admin_cmd command = command_with(data);
    std::printf("%d\n", static_cast<int>(other == fd));
    say(ioctl(other, NVME_IOCTL_ADMIN_CMD, &command));
    const int space = open_node("/dev/nvme0n1");
    dup2(space, other);
    say(ioctl(other, NVME_IOCTL_ID));
    return 0;
}

int no_descriptor()
{
    nvme_admin_cmd command{};
    say(ioctl(-1, NVME_IOCTL_ADMIN_CMD, &command));
    say(ioctl(99, NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

int space()
{
    const int fd = open_node("/dev/nvme0n1");
    say(ioctl(fd, NVME_IOCTL_ID));
    QRX_U64 bytes = 0;
    say(ioctl(fd, qrx::sim::kBlockBytes, &bytes));
    int sector = 0;
    say(ioctl(fd, qrx::sim::kBlockSectorSize, &sector));
    std::printf("%llu %d\n", static_cast<unsigned long long>(bytes), sector);
    say(ioctl(open_node(), NVME_IOCTL_ID));
    struct stat status {};
    fstat(fd, &status);
    std::printf("%d\n", static_cast<int>(S_ISBLK(status.st_mode)));
    return 0;
}

int submit()
{
    struct {
        QRX_U8 opcode, flags;
        QRX_U16 control, nblocks, reserved;
        QRX_U64 metadata, addr, slba;
        QRX_U32 dsmgmt, reftag;
        QRX_U16 apptag, appmask;
    } io{};
    Bytes data(1024, 'a');
    io.opcode = 2;
    io.nblocks = 1;
    io.addr = address_of(data.data());
    io.slba = 0x123456789aULL;
    const int fd = open_node("/dev/nvme0n1");
    say(ioctl(fd, qrx::sim::NVME_IOCTL_SUBMIT_IO_64, &io));
    std::printf("%c\n", data[1023]);
    // On the controller's node the request comes with a pass-through record.
    Bytes few(4, 'a');
    nvme_admin_cmd command = command_with(few);
    command.opcode = 2;
    say(ioctl(open_node(), NVME_IOCTL_SUBMIT_IO, &command));
    std::printf("%.4s\n", reinterpret_cast<const char*>(few.data()));
    return 0;
}

int threads()
{
    constexpr int kThreads = 4;
    constexpr int kCommands = 200;
    std::array<int, kThreads> good{};
    std::vector<std::thread> running;
    running.reserve(kThreads);
    for (int index = 0; index < kThreads; ++index) {
        running.emplace_back([&good, index] {
            const int fd = open_node();
            for (int turn = 0; turn < kCommands; ++turn) {
                Bytes data(16, static_cast<unsigned char>(index));
                nvme_admin_cmd command = command_with(data);
                command.cdw15 = static_cast<QRX_U32>(index * 1000 + turn);
                const bool sent = ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command) == 0;
                good.at(static_cast<std::size_t>(index)) +=
                    static_cast<int>(sent && command.result == static_cast<QRX_U32>(index * 1000 + turn) &&
                                     data == Bytes(16, static_cast<unsigned char>(index + 1)));
            }
        });
    }
    for (std::thread& thread : running) {
        thread.join();
    }
    for (const int count : good) {
        std::printf("%d\n", count);
    }
    return 0;
}

// Takes the namespace away, and gives another back.
int change(QRX_U32 what)
{
    Bytes none;
    nvme_admin_cmd command = command_with(none);
    command.cdw12 = what;
    say(ioctl(open_node(), NVME_IOCTL_ADMIN_CMD, &command));
    return 0;
}

int endless()
{
    const int fd = open_node();
    Bytes data(4096);
    for (;;) {
        nvme_admin_cmd command = command_with(data);
        if (ioctl(fd, NVME_IOCTL_ADMIN_CMD, &command) != 0) {
            return 1;
        }
    }
}

struct Action {
    std::string_view name;
    int (*run)();
};

constexpr Action kActions[] = {
    {"command", command},
    {"write", write_command},
    {"wide", wide_command},
    {"status", status},
    {"error", driver_error},
    {"bad-record", bad_record},
    {"bad-data", bad_data},
    {"half-bad-data", half_bad_data},
    {"read-only-data", read_only_data},
    {"no-data", no_data},
    {"huge-data", huge_data},
    {"moving-data", moving_data},
    {"dup", duplicate},
    {"fork", after_fork},
    {"reused-number", reused_number},
    {"no-descriptor", no_descriptor},
    {"namespace", space},
    {"submit", submit},
    {"threads", threads},
    {"endless", endless},
    {"remove", [] { return change(1); }},
    {"add", [] { return change(2); }},
};

}  // namespace

int main(int argc, char** argv)
{
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "exec") {
        return after_exec(argv[0]);
    }
    if (what == "given" && argc > 2) {
        send(std::stoi(argv[2]));
        return 0;
    }
    for (const Action& action : kActions) {
        if (action.name == what) {
            return action.run();
        }
    }
    return 2;
}
