#pragma once

#include "Base/DataDirectory.h"
#include "Base/Preferences.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// Where the user's preferences lie.
std::filesystem::path preferencesPath(const EnvironmentReader& environment);

/// The preferences in a JSON object whose values are booleans, numbers and strings. One thread at a
/// time may call; several programs may write the same file.
///
/// 1. Every change is written at once, into a file aside that takes the place of the old one: who
///    reads sees the old file or the new one, whenever a program is killed.
/// 2. A change touches its own key only. What other programs have written, keys this program does
///    not know, and values of other types stay as they are.
/// 3. A file that is no JSON object reads as empty, and is kept beside the new one, under its name
///    with ".damaged", when something is written. One that cannot be read is never replaced.
/// 4. A change that cannot be written holds for this object and is written with the next one.
class PreferencesFile {
public:
    explicit PreferencesFile(std::filesystem::path file);

    /// As they were when the file was opened, with the changes made here.
    const Preferences& values() const { return preferences; }

    void set(std::string_view key, PreferenceValue value);
    void remove(std::string_view key);

    /// Tries again to write what could not be written, if anything.
    void flush();

    /// Why there are changes that are not written: a Chinese sentence that says what to do.
    const std::optional<std::string>& failure() const { return whyUnwritten; }

private:
    /// Changes not yet in the file; nothing stands for a removed key.
    using Changes = std::map<std::string, std::optional<PreferenceValue>, std::less<>>;

    void write() const;

    std::filesystem::path file;
    Preferences preferences;
    Changes changes;
    std::optional<std::string> whyUnwritten;
};

} // namespace tavik
