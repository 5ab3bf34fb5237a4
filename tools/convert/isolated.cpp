// SPDX-License-Identifier: Zlib
#include "tools/convert/isolated.h"

#include "tools/convert/convert.h"
#include "tools/convert/descriptor.h"
#include "tools/convert/isolated_child.h"
#include "tools/convert/output_folder.h"
#include "tools/convert/report_json.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <thread>

namespace keltra::convert {
namespace {

using Clock = std::chrono::steady_clock;
// A child that gets a signal while it renames its files finishes that first.
constexpr std::chrono::seconds kGrace(5);
constexpr std::chrono::milliseconds kReapInterval(5), kLongestWait(60000);

// The child process; killed and reaped by the destructor.
class Child {
   public:
    explicit Child(pid_t pid) : pid(pid) {}
    ~Child() {
        if (pid <= 0) return;
        signal(SIGKILL);
        reap(Clock::time_point::max());
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    void signal(int number) const {
        if (pid > 0) ::kill(pid, number);
    }
    // The exit status. Nothing if it still runs at `deadline`, or if another wait has reaped it.
    std::optional<int> reap(Clock::time_point deadline) {
        for (;; std::this_thread::sleep_for(kReapInterval)) {
            int status = 0;
            const pid_t ended = ::waitpid(pid, &status, WNOHANG);
            const bool runs = ended == 0 || (ended < 0 && errno == EINTR);
            if (!runs) pid = 0;
            if (ended > 0) return status;
            if (!runs || Clock::now() >= deadline) return std::nullopt;
        }
    }

   private:
    pid_t pid;
};

// Collects the child's messages. A crashing child can send any bytes.
class Receiver {
   public:
    explicit Receiver(const Progress &progress) : progress(progress) {}

    // False at the end of the pipe, after the outcome, and after an invalid message.
    bool readFrom(int pipe) {
        char bytes[65536];
        const ssize_t count = ::read(pipe, bytes, sizeof bytes);
        if (count < 0) return errno == EINTR || errno == EAGAIN;
        buffer.insert(buffer.end(), bytes, bytes + count);
        return count > 0 && takeMessages();
    }
    const std::optional<Outcome> &outcome() const { return received; }

   private:
    bool takeMessages() {
        std::uint32_t size = 0;
        std::size_t at = 0;
        for (; buffer.size() - at >= sizeof size; at += sizeof size + size) {
            std::memcpy(&size, buffer.data() + at, sizeof size);
            if (size > kLongestMessage) return false;
            if (buffer.size() - at - sizeof size < size) break;
            const auto first = buffer.begin() + static_cast<std::ptrdiff_t>(at + sizeof size);
            if (!take(Json::from_cbor(first, first + size, true, false))) return false;
        }
        buffer.erase(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(at));
        return true;
    }

    bool take(const Json &message) {
        try {
            if (!message.contains(kProgressKey)) {
                received = outcomeOf(message);
                return false;
            }
            const std::string what = message.at(kProgressKey);
            if (progress) progress(what.c_str(), message.at(kDoneKey).get<double>());
        } catch (const Json::exception &) {
            return false;
        }
        return true;
    }

    const Progress &progress;
    std::vector<char> buffer;
    std::optional<Outcome> received;
};

// A reason in one line; importers' messages may have several.
std::string inOneLine(const std::string &text) {
    std::string line;
    for (char c : text) {
        const bool blank = static_cast<unsigned char>(c) <= ' ' || c == 0x7f;
        if (!blank) line += c;
        if (blank && !line.empty() && line.back() != ' ') line += ' ';
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string reasonOf(const std::optional<int> &status) {
    if (!status || !WIFSIGNALED(*status)) return "its importer crashed on it";
    const int number = WTERMSIG(*status);
    const char *name = ::sigabbrev_np(number);
    const std::string signal = name ? std::string(" (SIG") + name + ")" : "";
    if (number == SIGINT || number == SIGTERM || number == SIGHUP || number == SIGQUIT)
        return "the conversion was interrupted" + signal;
    if (number == SIGKILL) return "its importer was killed, possibly because memory ran out" + signal;
    return "its importer crashed on it" + signal;
}

enum class Stop { kNone, kInterrupted, kTimeout };

// Reads until the outcome arrives or the pipe ends. At the deadline, and when a signal is pending, the child
// gets SIGTERM.
Stop receive(Receiver &receiver, int pipe, int signals, Child &child, Clock::time_point deadline) {
    Stop stop = Stop::kNone;
    for (;;) {
        const Clock::time_point now = Clock::now();
        if (now >= deadline && stop != Stop::kNone) return stop;
        pollfd wanted[] = {{pipe, POLLIN, 0}, {stop == Stop::kNone ? signals : -1, POLLIN, 0}};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
        const int wait = static_cast<int>(std::min<std::int64_t>(left, kLongestWait.count()));
        const int ready = now >= deadline ? 0 : ::poll(wanted, 2, wait);
        if (ready < 0 && errno != EINTR) return stop;
        if (ready > 0 && wanted[0].revents != 0 && !receiver.readFrom(pipe)) return stop;
        const bool late = Clock::now() >= deadline;
        if (stop == Stop::kNone && (late || (ready > 0 && wanted[1].revents != 0))) {
            stop = late ? Stop::kTimeout : Stop::kInterrupted;
            child.signal(SIGTERM);
            deadline = Clock::now() + kGrace;
        }
    }
}

Outcome refused(const std::string &reason) {
    Outcome outcome;
    outcome.reason = reason;
    return outcome;
}

}  // namespace

Outcome convertIsolated(const Options &options, const std::string &folder, const Progress &progress,
                        unsigned seconds) {
    return convertIsolated(convertModel, options, folder, progress, seconds);
}

Outcome convertIsolated(const ConvertFunction &convert, const Options &options, const std::string &folder,
                        const Progress &progress, unsigned seconds) {
    // Signals stay pending until the child has ended; they are delivered when these go out of scope.
    const HeldSignals held;
    const Descriptor signals(::signalfd(-1, &held.set(), SFD_CLOEXEC | SFD_NONBLOCK));
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return refused(std::string("cannot start a process for it: ") + std::strerror(errno));
    const Descriptor input(ends[0]);
    Descriptor output(ends[1]);
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid < 0) return refused(std::string("cannot start a process for it: ") + std::strerror(errno));
    if (pid == 0) runChild({convert, options, folder}, output.get(), parent);
    output.close();

    Child child(pid);
    Receiver receiver(progress);
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(seconds);
    const Stop stop = receive(receiver, input.get(), signals.get(), child, deadline);
    if (receiver.outcome()) {
        Outcome outcome = *receiver.outcome();
        outcome.reason = inOneLine(outcome.reason);
        return outcome;
    }
    if (stop == Stop::kTimeout)
        return refused("took longer than " + std::to_string(seconds) +
                       (seconds == 1 ? " second" : " seconds"));
    if (stop == Stop::kInterrupted) return refused("the conversion was interrupted");
    return refused(reasonOf(child.reap(Clock::now() + kGrace)));
}

}  // namespace keltra::convert
