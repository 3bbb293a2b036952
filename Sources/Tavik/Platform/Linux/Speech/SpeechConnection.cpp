#include "Platform/Linux/Speech/SpeechConnection.h"

#include "Platform/Linux/Speech/SpeechRate.h"

#include <glib.h>
#include <libspeechd.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace tavik {
namespace {

constexpr std::size_t maxTextLength = 4096;

/// Longer than any tag of a language that a voice has.
constexpr std::size_t maxLanguageLength = 35;

/// Safe within the service's commands, which are lines of words.
bool isLanguageTag(const std::string& text) {
    return !text.empty() && text.size() <= maxLanguageLength
           && std::ranges::all_of(text, [](char c) { return g_ascii_isalnum(c) || c == '-'; });
}

/// In one line: a line that is a single dot would end the text, and what follows would be commands.
std::string speakableText(std::string_view text) {
    std::string line;
    text = text.substr(0, maxTextLength);
    while (!text.empty()) {
        const gunichar scalar =
            g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
        const bool isText = g_unichar_validate(scalar) && !g_unichar_iscntrl(scalar);
        const auto length =
            isText ? static_cast<std::size_t>(g_utf8_next_char(text.data()) - text.data()) : 1;
        line += isText ? text.substr(0, length) : " ";
        text.remove_prefix(length);
    }
    return line;
}

/// The rate that the user has set for the service, asked for in its own words: the library's
/// function for it reads an answer that may be missing.
int usualRateOf(SPDConnection* connection) {
    constexpr std::string_view start = "251-";
    char* answer = nullptr;
    const int status = spd_execute_command_with_reply(connection, "GET RATE", &answer);
    const std::unique_ptr<char, decltype(&g_free)> owner(answer, &g_free);
    int rate = 0;
    if (status != 0) return rate;
    const std::string_view text(answer);
    if (text.starts_with(start))
        std::from_chars(text.data() + start.size(), text.data() + text.size(), rate);
    return std::clamp(rate, -100, 100);
}

} // namespace

struct SpeechConnection::Handle {
    explicit Handle(SPDConnection* connection) : connection(connection) {}

    ~Handle() { spd_close(connection); }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    SPDConnection* connection;
};

SpeechConnection::SpeechConnection(std::unique_ptr<Handle> handle)
    : handle(std::move(handle)), usualRate(usualRateOf(this->handle->connection)) {}

SpeechConnection::~SpeechConnection() = default;

std::unique_ptr<SpeechConnection> SpeechConnection::open() {
    char* error = nullptr;
    constexpr int isStartedIfNeeded = 1;
    SPDConnection* connection =
        spd_open2("Tavik", "main", nullptr, SPD_MODE_SINGLE, nullptr, isStartedIfNeeded, &error);
    g_free(error);
    if (connection == nullptr) return nullptr;
    return std::unique_ptr<SpeechConnection>(
        new SpeechConnection(std::make_unique<Handle>(connection)));
}

bool SpeechConnection::cancel() {
    return spd_cancel(handle->connection) == 0;
}

bool SpeechConnection::say(const std::string& text, const std::string& language, double rate,
                           const std::function<bool()>& isOutdated) {
    const std::string line = speakableText(text);
    const bool isBlank = line.find_first_not_of(' ') == std::string::npos;
    if (isBlank || !isLanguageTag(language)) return true;
    SPDConnection* connection = handle->connection;
    // What the service refuses of these leaves speech that is better than none.
    spd_set_data_mode(connection, SPD_DATA_TEXT);
    spd_set_language(connection, language.c_str());
    spd_set_voice_rate(connection, speechRate(rate, usualRate));
    return isOutdated() || spd_say(connection, SPD_TEXT, line.c_str()) >= 0;
}

} // namespace tavik
