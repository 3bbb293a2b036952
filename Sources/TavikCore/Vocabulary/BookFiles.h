#pragma once

#include "Base/Date.h"

#include <array>
#include <filesystem>
#include <string_view>

namespace tavik {

/// What belongs to a book on the disk, after its own name; the file itself last.
inline constexpr std::array bookEndings{"-wal", "-shm", "-journal", ""};

/// Whether any file of a book at `path` is there.
bool existsAnyPart(const std::filesystem::path& book);

/// A name beside the book that nothing has yet, with `label` and `now` in it.
std::filesystem::path placeBeside(const std::filesystem::path& book, std::string_view label,
                                  Date now);

/// Whether another program has the book open.
bool isInUse(const std::filesystem::path& book);

/// A book moved aside with all its parts, and moved back at the end of the scope unless it is to
/// stay there. Throws `FileError` when it cannot be moved; it is then where it was.
class MovedBook {
public:
    MovedBook(std::filesystem::path from, std::filesystem::path to);
    ~MovedBook();
    MovedBook(const MovedBook&) = delete;
    MovedBook& operator=(const MovedBook&) = delete;

    void keep() { stays = true; }

private:
    void moveBack() const;

    std::filesystem::path from;
    std::filesystem::path to;
    bool stays = false;
};

} // namespace tavik
