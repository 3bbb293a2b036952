#include "Base/PreferencesFile.h"

#include "Base/AsideFile.h"
#include "Base/BoundedJSON.h"
#include "Base/Links.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <fstream>
#include <system_error>
#include <thread>
#include <utility>

namespace tavik {
namespace fs = std::filesystem;

namespace {

using nlohmann::json;

/// Far more than preferences need, and little enough to read at once.
constexpr std::uintmax_t maxFileSize = 1 << 20;

/// What the file holds: nothing when it is damaged, an empty object when it is missing. Throws
/// `FileError` when it cannot be read.
std::optional<json> contentsOf(const fs::path& file) {
    std::error_code error;
    const auto status = fs::status(file, error);
    if (!fs::exists(status)) {
        if (status.type() == fs::file_type::not_found) return json::object();
        throw FileError("读不了 " + file.string() + "（" + error.message() + "），请检查权限");
    }
    if (!fs::is_regular_file(status)) throw FileError(file.string() + " 不是普通文件，请把它移走");
    const auto size = fs::file_size(file, error);
    if (error) throw FileError("读不了 " + file.string() + "（" + error.message() + "）");
    if (size > maxFileSize) return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::string text(size, '\0');
    if (!stream.read(text.data(), static_cast<std::streamsize>(size)))
        throw FileError("读不了 " + file.string() + "，请检查权限和磁盘");
    auto parsed = parseBoundedJSON(text);
    if (!parsed || !parsed->is_object()) return std::nullopt;
    return parsed;
}

std::optional<PreferenceValue> preferenceValue(const json& value) {
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number_unsigned() && value.get<std::uint64_t>() > std::uint64_t{INT64_MAX})
        return value.get<double>();
    if (value.is_number_integer()) return value.get<std::int64_t>();
    if (value.is_number_float()) return value.get<double>();
    if (value.is_string()) return value.get<std::string>();
    return std::nullopt;
}

Preferences readPreferences(const fs::path& file) {
    Preferences preferences;
    try {
        const auto contents = contentsOf(file);
        if (!contents) return preferences;
        for (const auto& [key, value] : contents->items())
            if (auto known = preferenceValue(value)) preferences.set(key, std::move(*known));
    } catch (const FileError&) {
        // The defaults hold; writing will tell why.
    }
    return preferences;
}

/// Gives a damaged file a second name that is free, unless it has one.
void keepDamaged(const fs::path& file) {
    const fs::path damaged = followingLinks(file);
    std::error_code error;
    fs::path place = file.string() + ".damaged";
    for (int number = 2; fs::exists(fs::symlink_status(place)); ++number) {
        if (fs::equivalent(place, damaged, error)) return;
        place = file.string() + ".damaged-" + std::to_string(number);
    }
    fs::create_hard_link(damaged, place, error);
    if (!error) return;
    // Not every file system has links.
    if (fs::copy_file(damaged, place, error)) return;
    std::error_code ignored;
    fs::remove(place, ignored);
    throw FileError(file.string() + " 已损坏，又不能复制到 " + place.string() + "（"
                    + error.message() + "）。请检查磁盘空间和权限");
}

/// Another program holds the lock for the moment it takes to write a small file.
DirectoryLock lockSoon(const fs::path& directory) {
    using namespace std::chrono_literals;
    for (int attempt = 0; attempt < 10; ++attempt) {
        try {
            return DirectoryLock(directory);
        } catch (const FileError&) {
            std::this_thread::sleep_for(3ms);
        }
    }
    return DirectoryLock(directory);
}

void createDirectory(const fs::path& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    if (error && !fs::is_directory(directory))
        throw FileError("建不了目录 " + directory.string() + "（" + error.message()
                        + "），请检查磁盘空间和权限");
}

} // namespace

fs::path preferencesPath(const EnvironmentReader& environment) {
    return configDirectory(environment) / "Tavik" / "preferences.json";
}

PreferencesFile::PreferencesFile(fs::path file)
    : file(std::move(file)), preferences(readPreferences(this->file)) {}

void PreferencesFile::set(std::string_view key, PreferenceValue value) {
    preferences.set(key, value);
    changes.insert_or_assign(std::string(key), std::move(value));
    flush();
}

void PreferencesFile::remove(std::string_view key) {
    preferences.remove(key);
    changes.insert_or_assign(std::string(key), std::nullopt);
    flush();
}

void PreferencesFile::flush() {
    if (changes.empty()) return;
    try {
        write();
        changes.clear();
        whyUnwritten.reset();
    } catch (const std::exception& error) {
        whyUnwritten = std::string("设置没有存下来：") + error.what();
    }
}

void PreferencesFile::write() const {
    const fs::path directory = directoryOf(file);
    createDirectory(directory);
    const DirectoryLock lock = lockSoon(directory);
    auto contents = contentsOf(file);
    const bool isDamaged = !contents;
    json object = std::move(contents).value_or(json::object());
    for (const auto& [key, value] : changes)
        if (value)
            object[key] = std::visit([](const auto& known) { return json(known); }, *value);
        else
            object.erase(key);
    AsideFile aside(file);
    aside.write(object.dump(2, ' ', false, json::error_handler_t::replace) + '\n');
    if (isDamaged) keepDamaged(file);
    aside.commit();
}

} // namespace tavik
