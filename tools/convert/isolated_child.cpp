// SPDX-License-Identifier: Zlib
#include "tools/convert/isolated_child.h"

#include "tools/convert/convert.h"
#include "tools/convert/output_folder.h"
#include "tools/convert/report_json.h"
#include "tools/convert/report_text.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <new>

#ifndef __has_feature
#define __has_feature(feature) 0
#endif

namespace keltra::convert {
namespace {

#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr bool kLimitMemory = false;  // the sanitizer reserves terabytes of addresses
#else
constexpr bool kLimitMemory = true;
#endif
constexpr std::uint64_t kMostMemory = std::uint64_t(8) << 30;
constexpr std::chrono::milliseconds kProgressInterval(50);

// Handlers of a window library would use its connection, which belongs to the parent. Ignored signals stay
// ignored, as nohup requires.
void resetSignals() {
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action;
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            ::signal(number, SIG_DFL);
    }
    ::signal(SIGPIPE, SIG_IGN);  // write() returns an error for both
    ::signal(SIGXFSZ, SIG_IGN);
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

void limit(int resource, std::uint64_t most) {
    rlimit limits;
    if (::getrlimit(resource, &limits) != 0) return;
    limits.rlim_cur = static_cast<rlim_t>(std::min<std::uint64_t>(limits.rlim_max, most));
    ::setrlimit(resource, &limits);
}

// Importers print messages of their own.
void silence() {
    const int nowhere = ::open("/dev/null", O_RDWR);
    if (nowhere < 0) return;
    ::dup2(nowhere, STDIN_FILENO);
    ::dup2(nowhere, STDOUT_FILENO);
    if (!std::getenv("KELTRA_CONVERT_VERBOSE")) ::dup2(nowhere, STDERR_FILENO);
    if (nowhere > STDERR_FILENO) ::close(nowhere);
}

// Ends the process if the parent no longer reads.
void sendAll(int pipe, const void *data, std::size_t size) {
    const char *bytes = static_cast<const char *>(data);
    while (size > 0) {
        const ssize_t count = ::write(pipe, bytes, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) ::_exit(EXIT_FAILURE);
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
}

void send(int pipe, const Json &message) {
    const std::vector<std::uint8_t> bytes = Json::to_cbor(message);
    const std::uint32_t size = static_cast<std::uint32_t>(bytes.size());
    sendAll(pipe, &size, sizeof size);
    sendAll(pipe, bytes.data(), bytes.size());
}

Progress progressTo(int pipe) {
    auto next = std::chrono::steady_clock::now();
    return [pipe, next](const char *what, double done) mutable {
        const auto now = std::chrono::steady_clock::now();
        if (now < next) return;
        next = now + kProgressInterval;
        send(pipe, {{kProgressKey, what}, {kDoneKey, done}});
    };
}

// The files are in place before the outcome is sent, and signals are held between the two.
void convertAndSend(const Work &work, int pipe) {
    const Conversion conversion = work.convert(work.options, progressTo(pipe));
    Outcome outcome;
    outcome.converted = true;
    outcome.report = conversion.report;
    for (const OutputFile &file : conversion.files) outcome.files.push_back(file.name);
    if (work.options.strict && outcome.report.tally().any()) {
        outcome.converted = false;
        outcome.strict = true;
        outcome.reason = "--strict: " + countsOf(outcome.report.tally());
    }
    const Json message = outcomeJson(outcome);
    HeldSignals held;
    if (!work.folder.empty() && outcome.converted) commitFiles(work.folder, conversion.files);
    send(pipe, message);
    ::_exit(EXIT_SUCCESS);
}

void sendRefusal(int pipe, const std::string &reason) {
    Outcome outcome;
    outcome.reason = reason;
    send(pipe, outcomeJson(outcome));
}

}  // namespace

void runChild(const Work &work, int pipe, pid_t parent) noexcept {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(EXIT_FAILURE);
    resetSignals();
    silence();
    limit(RLIMIT_CORE, 0);
    if (kLimitMemory) limit(RLIMIT_AS, kMostMemory);
    try {
        convertAndSend(work, pipe);
    } catch (const Refusal &refusal) {
        sendRefusal(pipe, refusal.what());
    } catch (const std::bad_alloc &) {
        sendRefusal(pipe, "out of memory");
    } catch (const std::exception &error) {
        sendRefusal(pipe, std::string("its importer failed: ") + error.what());
    } catch (...) {
        sendRefusal(pipe, "its importer failed");
    }
    ::_exit(EXIT_FAILURE);
}

}  // namespace keltra::convert
