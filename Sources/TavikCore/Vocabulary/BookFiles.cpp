#include "Vocabulary/BookFiles.h"

#include "Base/AsideFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <system_error>
#include <utility>

namespace tavik {
namespace fs = std::filesystem;

namespace {

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

/// "20261121-113852", in UTC.
std::string stamp(Date now) {
    std::string digits;
    for (const char character : iso8601(std::chrono::floor<std::chrono::seconds>(now))) {
        if (character == 'T') digits += '-';
        if (character == '.') break;
        if (std::isdigit(static_cast<unsigned char>(character)) != 0) digits += character;
    }
    return digits;
}

} // namespace

bool existsAnyPart(const fs::path& book) {
    return std::ranges::any_of(bookEndings,
                               [&](const char* ending) { return isThere(book.string() + ending); });
}

fs::path placeBeside(const fs::path& book, std::string_view label, Date now) {
    const std::string name = book.string() + '.' + std::string(label) + '-' + stamp(now);
    fs::path place = name;
    for (int number = 2; existsAnyPart(place); ++number)
        place = name + '-' + std::to_string(number);
    return place;
}

bool isInUse(const fs::path& book) {
    // Who has it open holds a lock on bytes that SQLite reserves.
    constexpr off_t reservedBytes = 0x40000000;
    constexpr off_t reservedByteCount = 512;
    const int descriptor = open(book.c_str(), O_RDWR | O_CLOEXEC);
    // A file that cannot be opened here is open to nobody.
    if (descriptor < 0) return false;

    struct flock lock {};

    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = reservedBytes;
    lock.l_len = reservedByteCount;
    const bool isKnown = fcntl(descriptor, F_GETLK, &lock) == 0;
    close(descriptor);
    return isKnown && lock.l_type != F_UNLCK;
}

MovedBook::MovedBook(fs::path from, fs::path to) : from(std::move(from)), to(std::move(to)) {
    for (const char* const ending : bookEndings) {
        if (!isThere(this->from.string() + ending)) continue;
        std::error_code error;
        fs::rename(this->from.string() + ending, this->to.string() + ending, error);
        if (!error) continue;
        moveBack();
        throw FileError("原来的生词本 " + this->from.string() + " 移不开，请检查目录的权限（"
                        + error.message() + "）");
    }
}

MovedBook::~MovedBook() {
    if (!stays) moveBack();
}

void MovedBook::moveBack() const {
    std::error_code ignored;
    for (const char* const ending : bookEndings)
        if (isThere(to.string() + ending))
            fs::rename(to.string() + ending, from.string() + ending, ignored);
}

} // namespace tavik
