#include "Capture/CaptureLog.h"

#include "Capture/CaptureError.h"
#include "Text/Unicode.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

namespace tavik {
namespace fs = std::filesystem;

namespace {

constexpr std::size_t maxFileSize = 1 << 20;
constexpr std::size_t maxTextLength = 80;
/// Far more than any honest name or address has.
constexpr std::size_t maxNameLength = 4096;

/// The log file, open for one line.
class LogFile {
public:
    explicit LogFile(const fs::path& path)
        // Neither a link nor a pipe in the place of the file is to lead the text elsewhere.
        : descriptor(
            open(path.c_str(),
                 O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC,
                 S_IRUSR | S_IWUSR)) {}

    ~LogFile() {
        if (descriptor >= 0) close(descriptor);
    }

    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Whether this is a file, which then only the user can read.
    bool isUsable() const {
        struct stat status {};

        return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
               && ((status.st_mode & (S_IRWXG | S_IRWXO)) == 0
                   || fchmod(descriptor, S_IRUSR | S_IWUSR) == 0);
    }

    bool hasRoomFor(std::size_t length) const {
        struct stat status {};

        return fstat(descriptor, &status) == 0
               && (status.st_size == 0
                   || static_cast<std::size_t>(status.st_size) + length <= maxFileSize);
    }

    /// Keeps others from moving it away till it is closed. Fails when one is at it.
    bool lock() const { return flock(descriptor, LOCK_EX | LOCK_NB) == 0; }

    bool isAt(const fs::path& path) const {
        struct stat own {};

        struct stat there {};

        return fstat(descriptor, &own) == 0 && lstat(path.c_str(), &there) == 0
               && own.st_dev == there.st_dev && own.st_ino == there.st_ino;
    }

    void append(std::string_view line) const {
        const ssize_t written = ::write(descriptor, line.data(), line.size());
        if (written <= 0 || static_cast<std::size_t>(written) == line.size()) return;

        // A part of a line is taken back, unless another one stands behind it already.
        struct stat status {};

        const off_t end = lseek(descriptor, 0, SEEK_CUR);
        if (fstat(descriptor, &status) != 0 || status.st_size != end) return;
        const int ignored = ftruncate(descriptor, end - written);
        static_cast<void>(ignored);
    }

private:
    int descriptor;
};

void createFolders(const fs::path& folder) {
    fs::path place;
    for (const fs::path& name : folder) {
        place /= name;
        static_cast<void>(mkdir(place.c_str(), S_IRWXU));
    }
}

std::string onOneLine(std::string_view text, std::size_t maxLength) {
    return printable(firstCharacters(text, maxLength));
}

std::string application(const SourceInfo& source) {
    return onOneLine(source.appName.value_or("?"), maxNameLength) + ' '
           + onOneLine(source.bundleID.value_or(""), maxNameLength);
}

std::string timestamp(Date date) {
    std::string text = iso8601(std::chrono::floor<std::chrono::seconds>(date));
    return text.replace(text.find('.'), std::string::npos, "Z");
}

} // namespace

fs::path CaptureLog::standardPath(const EnvironmentReader& environment) {
    return homeDirectory(environment) / "Library/Logs/Tavik/capture.log";
}

CaptureLog::CaptureLog(fs::path file, std::function<Date()> now)
    : file(std::move(file)), now(std::move(now)) {}

void CaptureLog::write(const CaptureResult& result, Date start) const {
    append(application(result.source) + " method=" + text(result.method) + " text=\""
           + onOneLine(result.text, maxTextLength)
           + "\" sentence=" + (result.sentence ? "yes" : "no") + " url="
           + onOneLine(result.source.url.value_or("-"), maxNameLength) + ' ' + milliseconds(start));
}

void CaptureLog::write(const std::exception& error, Date start) const {
    const auto* const captureError = dynamic_cast<const CaptureError*>(&error);
    append(application(captureError == nullptr ? SourceInfo{} : captureError->source())
           + " error=\"" + onOneLine(error.what(), maxNameLength) + "\" " + milliseconds(start));
}

/// Whoever sets the clock in between gets nonsense, but a number.
std::string CaptureLog::milliseconds(Date start) const {
    constexpr double longest = 1e15;
    const double count = std::round((now() - start).count() * 1000);
    return std::to_string(static_cast<std::int64_t>(std::clamp(count, 0.0, longest))) + "ms";
}

void CaptureLog::append(const std::string& message) const {
    const std::string line = timestamp(now()) + ' ' + message + '\n';
    createFolders(file.parent_path());
    const fs::path older = file.string() + ".1";
    // The second file is new, unless others have filled it at once.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const LogFile log(file);
        if (!log.isUsable()) return;
        // A file that another program is just moving away still takes this line with it.
        if (log.hasRoomFor(line.size()) || !log.lock()) return log.append(line);
        if (log.isAt(file) && std::rename(file.c_str(), older.c_str()) != 0) return;
    }
}

} // namespace tavik
