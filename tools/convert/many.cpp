// SPDX-License-Identifier: Zlib
#include "tools/convert/many.h"

#include "tools/convert/descriptor.h"
#include "tools/convert/output_folder.h"
#include "tools/convert/report_json.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

namespace keltra::convert {
namespace {

constexpr std::size_t kLongestOutcome = std::size_t{64} << 20;

Outcome failure(const std::string &reason) {
    Outcome outcome;
    outcome.reason = reason;
    return outcome;
}

struct Job {
    Job(std::size_t index, int input, pid_t pid) : index(index), input(input), pid(pid) {}

    // False at the end of the pipe.
    bool read() {
        char part[65536];
        const ssize_t count = ::read(input.get(), part, sizeof part);
        if (count < 0) return errno == EINTR || errno == EAGAIN;
        bytes.insert(bytes.end(), part, part + count);
        return count > 0 && bytes.size() <= kLongestOutcome;
    }

    Outcome finish() {
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        try {
            return outcomeOf(Json::from_cbor(bytes));
        } catch (const Json::exception &) {
            return failure("the process that converted it ended early");
        }
    }

    const std::size_t index;
    Descriptor input;
    const pid_t pid;
    std::vector<std::uint8_t> bytes;
};

void sendAll(int pipe, const std::vector<std::uint8_t> &bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t count = ::write(pipe, bytes.data() + at, bytes.size() - at);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        at += static_cast<std::size_t>(count);
    }
}

[[noreturn]] void runJob(std::size_t index, int pipe, pid_t parent,
                         const std::function<Outcome(std::size_t)> &convert) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(EXIT_FAILURE);
    try {
        sendAll(pipe, Json::to_cbor(outcomeJson(convert(index))));
    } catch (const std::exception &error) {
        sendAll(pipe, Json::to_cbor(outcomeJson(failure(error.what()))));
    }
    ::_exit(EXIT_SUCCESS);
}

std::unique_ptr<Job> start(std::size_t index, const std::function<Outcome(std::size_t)> &convert) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return nullptr;
    const pid_t parent = ::getpid(), pid = ::fork();
    if (pid == 0) {
        ::close(ends[0]);
        runJob(index, ends[1], parent, convert);
    }
    ::close(ends[1]);
    if (pid < 0) {
        ::close(ends[0]);
        return nullptr;
    }
    return std::make_unique<Job>(index, ends[0], pid);
}

class Jobs {
   public:
    Jobs(std::size_t count, const std::function<Outcome(std::size_t)> &convert)
        : signals(::signalfd(-1, &held.set(), SFD_CLOEXEC | SFD_NONBLOCK)),
          convert(convert),
          outcomes(count) {}

    bool startNext() {
        if (next == outcomes.size()) return false;
        std::unique_ptr<Job> job = stopped ? nullptr : start(next, convert);
        if (!job && !stopped && !running.empty()) return false;  // tried again when one has ended
        if (job)
            running.push_back(std::move(job));
        else
            outcomes[next] =
                failure(stopped ? "the conversion was interrupted"
                                : std::string("cannot start a process for it: ") + std::strerror(errno));
        ++next;
        return true;
    }

    // Waits until some process has sent something or ended.
    void wait() {
        std::vector<pollfd> wanted = {{stopped ? -1 : signals.get(), POLLIN, 0}};
        for (const auto &job : running) wanted.push_back({job->input.get(), POLLIN, 0});
        if (running.empty() || ::poll(wanted.data(), wanted.size(), -1) < 0) return;
        if (wanted[0].revents != 0) stop();
        for (std::size_t i = running.size(); i-- > 0;) {
            if (wanted[i + 1].revents == 0 || running[i]->read()) continue;
            outcomes[running[i]->index] = running[i]->finish();
            running.erase(running.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }

    std::size_t countRunning() const { return running.size(); }
    std::size_t countFinished() const { return next - running.size(); }
    std::optional<Outcome> &outcome(std::size_t index) { return outcomes[index]; }

   private:
    void stop() {
        stopped = true;
        for (const auto &job : running) ::kill(job->pid, SIGTERM);
    }

    const HeldSignals held;
    const Descriptor signals;
    const std::function<Outcome(std::size_t)> &convert;
    std::vector<std::unique_ptr<Job>> running;
    std::vector<std::optional<Outcome>> outcomes;
    std::size_t next = 0;
    bool stopped = false;
};

}  // namespace

void convertMany(std::size_t count, unsigned jobs, const std::function<Outcome(std::size_t)> &convert,
                 const std::function<void(std::size_t, const Outcome &)> &done,
                 const std::function<void(std::size_t)> &progress) {
    Jobs all(count, convert);
    for (std::size_t told = 0; told < count;) {
        while (all.countRunning() < std::max(jobs, 1u) && all.startNext()) {
        }
        all.wait();
        for (; told < count && all.outcome(told); ++told) {
            done(told, *all.outcome(told));
            all.outcome(told)->report = Report();  // those of thousands of models are large
        }
        progress(all.countFinished());
    }
}

std::string progressBar(std::size_t done, std::size_t count, unsigned width) {
    const std::size_t full = count == 0 ? width : done * width / count;
    return "[" + std::string(full, '#') + std::string(width - full, '.') + "] " + std::to_string(done) +
           " of " + std::to_string(count);
}

}  // namespace keltra::convert
