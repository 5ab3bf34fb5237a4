// SPDX-License-Identifier: Zlib
#include "tools/convert/output_folder.h"

#include "tools/convert/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>
#include <system_error>

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestStem = 200;  // of a temporary name, which must stay below 256 bytes
constexpr int kAttempts = 16;

[[noreturn]] void refuse(const std::string &path, int error) {
    throw Refusal("cannot write " + path + ": " + std::strerror(error));
}

std::string temporaryName(const std::string &name) {
    std::random_device random;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%08x%08x", random(), random());
    return "." + name.substr(0, kLongestStem) + "." + digits + ".tmp";
}

bool writeAll(int file, const std::vector<std::uint8_t> &bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(file, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

// Writes files into a folder. The destructor removes them unless all were renamed.
class Commit {
   public:
    explicit Commit(const std::string &path)
        : path(path), folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (folder.get() < 0) refuse(path, errno);
    }
    ~Commit() {
        if (done) return;
        for (const Entry &entry : entries) {
            // A file that has replaced another one stays: it is complete, and the other one is lost.
            if (entry.renamed && entry.replaced) continue;
            ::unlinkat(folder.get(), (entry.renamed ? entry.name : entry.temporary).c_str(), 0);
        }
    }

    // Renaming fails mostly because the target is not a file, so this is checked before anything is written.
    void check(const OutputFile &file) {
        struct stat status;
        if (::fstatat(folder.get(), file.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno != ENOENT) refuse(full(file.name), errno);
        } else if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) {
            refuse(full(file.name), S_ISDIR(status.st_mode) ? EISDIR : EEXIST);
        }
    }

    void write(const OutputFile &file) {
        int number = -1;
        std::string temporary;
        for (int attempt = 0; number < 0 && attempt < kAttempts; ++attempt) {
            temporary = temporaryName(file.name);
            number = ::openat(folder.get(), temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (number < 0 && errno != EEXIST) break;
        }
        if (number < 0) refuse(full(file.name), errno);
        Descriptor out(number);
        entries.push_back({file.name, temporary});
        if (!writeAll(out.get(), file.bytes) || !out.close()) refuse(full(file.name), errno);
    }

    void rename() {
        for (Entry &entry : entries) {
            entry.replaced = ::faccessat(folder.get(), entry.name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
            if (::renameat(folder.get(), entry.temporary.c_str(), folder.get(), entry.name.c_str()) != 0)
                refuse(full(entry.name), errno);
            entry.renamed = true;
        }
        done = true;
    }

   private:
    struct Entry {
        std::string name, temporary;
        bool renamed = false, replaced = false;
    };

    std::string full(const std::string &name) const { return (fs::path(path) / name).string(); }

    std::string path;
    Descriptor folder;
    std::vector<Entry> entries;
    bool done = false;
};

}  // namespace

OutputFolder::OutputFolder(const std::string &path) {
    std::error_code error;
    std::vector<fs::path> missing;
    // Without the final slash of the path, which would count as one more folder.
    fs::path folder = fs::path(path) / "";
    for (folder = folder.parent_path(); !folder.empty() && !fs::exists(folder, error) && !error;
         folder = folder.parent_path())
        missing.push_back(folder);
    if (error) throw Refusal("cannot write to " + path + ": " + error.message());
    for (auto each = missing.rbegin(); each != missing.rend(); ++each) {
        if (fs::create_directory(*each, error)) created.push_back(*each);
        if (error) break;
    }
    if (!error && !fs::is_directory(path, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (!error && ::access(path.c_str(), W_OK | X_OK) != 0) error = {errno, std::generic_category()};
    if (!error) return;
    removeCreated();
    throw Refusal("cannot write to " + path + ": " + error.message());
}

void OutputFolder::removeCreated() {
    std::error_code ignored;  // another program may have put files there
    for (auto each = created.rbegin(); each != created.rend(); ++each) fs::remove(*each, ignored);
}

HeldSignals::HeldSignals() {
    ::sigemptyset(&held);
    for (int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction action;
        const bool ignored = ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
        if (!ignored) ::sigaddset(&held, number);
    }
    ::pthread_sigmask(SIG_BLOCK, &held, &before);
}

HeldSignals::~HeldSignals() { ::pthread_sigmask(SIG_SETMASK, &before, nullptr); }

void commitFiles(const std::string &folder, const std::vector<OutputFile> &files) {
    HeldSignals held;
    Commit commit(folder);
    for (const OutputFile &file : files) commit.check(file);
    for (const OutputFile &file : files) commit.write(file);
    commit.rename();
}

void writeTextFile(const std::string &path, const std::string &text) {
    const fs::path file(path);
    const std::string in = file.parent_path().empty() ? "." : file.parent_path().string();
    commitFiles(in, {{file.filename().string(), {text.begin(), text.end()}}});
}

}  // namespace keltra::convert
