// byteproxy DELAY CONTROL COMMAND...: runs a command and passes bytes between it and its own
// standard input and output. What the command says is passed on DELAY milliseconds later. As long
// as the file CONTROL/swallow exists nothing is passed in either direction; CONTROL/kill ends it
// all.

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

struct Packet {
    Clock::time_point due;
    std::string bytes;
};

bool writeAll(int descriptor, const std::string &bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

/// What can be read; empty at the end.
std::string readSome(int descriptor)
{
    std::array<char, 64 * 1024> buffer{};
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

void pass(int child, int delay, const std::string &control)
{
    const auto exists
        = [&](const char *name) { return ::access((control + name).c_str(), F_OK) == 0; };
    std::deque<Packet> delayed;
    std::array<pollfd, 2> sources{{{STDIN_FILENO, POLLIN, 0}, {child, POLLIN, 0}}};
    while (!exists("/kill")) {
        ::poll(sources.data(), sources.size(), 2);
        const bool swallows = exists("/swallow");
        if (sources[0].revents) {
            const std::string bytes = readSome(STDIN_FILENO);
            if (bytes.empty() || (!swallows && !writeAll(child, bytes)))
                return;
        }
        if (sources[1].revents) {
            const std::string bytes = readSome(child);
            if (bytes.empty())
                sources[1].fd = -1; // what is delayed still goes out
            else if (!swallows)
                delayed.push_back({Clock::now() + std::chrono::milliseconds(delay), bytes});
        }
        while (!delayed.empty() && delayed.front().due <= Clock::now()) {
            if (!writeAll(STDOUT_FILENO, delayed.front().bytes))
                return;
            delayed.pop_front();
        }
        if (sources[1].fd < 0 && delayed.empty())
            return;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    std::array<int, 2> pair{};
    if (argc < 4 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()) != 0)
        return 1;
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(pair[1], STDIN_FILENO);
        ::dup2(pair[1], STDOUT_FILENO);
        ::close(pair[0]);
        ::close(pair[1]);
        ::execv(argv[3], argv + 3);
        ::_exit(1);
    }
    ::close(pair[1]);
    std::signal(SIGPIPE, SIG_IGN);
    pass(pair[0], std::atoi(argv[1]), argv[2]);
    ::kill(child, SIGKILL);
    return 0;
}
