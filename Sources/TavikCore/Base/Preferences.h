#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tavik {

using PreferenceValue = std::variant<bool, std::int64_t, double, std::string>;

/// The names under which preferences are kept.
namespace PreferenceKeys {

inline constexpr const char* hotKey = "hotKey";
inline constexpr const char* remindedUntil = "remindedUntil";
inline constexpr const char* reminderEnabled = "reminderEnabled";
inline constexpr const char* reminderHour = "reminderHour";
inline constexpr const char* reminderMinute = "reminderMinute";
inline constexpr const char* schedulerKind = "schedulerKind";
inline constexpr const char* desiredRetention = "desiredRetention";
inline constexpr const char* autoSpeak = "autoSpeak";
inline constexpr const char* llmProvider = "llmProvider";
inline constexpr const char* llmModel = "llmModel";
inline constexpr const char* llmBaseURL = "llmBaseURL";
inline constexpr const char* onboardingDone = "onboardingDone";
inline constexpr const char* hoverMode = "hoverMode";
inline constexpr const char* hoverDelay = "hoverDelay";
inline constexpr const char* startOptionTold = "startOptionTold";

} // namespace PreferenceKeys

/// What the user has chosen, by key. A plain value.
///
/// Each reader answers nothing when the key is missing or its value is of no fitting type. Numbers
/// and booleans stand for each other only where nothing is lost: 9.0 is an integer and 9.5 is none,
/// 1 is true and 2 is no boolean.
class Preferences {
public:
    std::optional<bool> boolean(std::string_view key) const;
    std::optional<std::int64_t> integer(std::string_view key) const;
    std::optional<double> number(std::string_view key) const;
    std::optional<std::string> text(std::string_view key) const;

    /// Whether the key holds anything that means yes: true, a number but 0, "YES", "true" or "1".
    bool isSet(std::string_view key) const;

    void set(std::string_view key, PreferenceValue value);
    void remove(std::string_view key);

    bool operator==(const Preferences&) const = default;

private:
    const PreferenceValue* find(std::string_view key) const;

    std::map<std::string, PreferenceValue, std::less<>> values;
};

} // namespace tavik
