#pragma once

#include "Explanation/LLMConfig.h"

#include <CLI/CLI.hpp>

#include <string>

namespace tavik {

/// The options that choose a language model. What is not given is taken from the environment, and a
/// provider that neither names from the user's preferences, with the model and address there. The
/// API key is never an option: other users of the machine can read a command line.
class ModelOptions {
public:
    void addTo(CLI::App& command);

    /// The configuration without its key.
    LLMConfig config() const;

    /// The key from the environment or, where the service wants one, from the person at the
    /// terminal; empty when there is none. Throws a runtime error when the person does not answer.
    std::string apiKey() const;

    /// For the end of a command's help.
    static const char* help();

private:
    std::string provider;
    std::string model;
    std::string baseURL;
    bool asksKey = false;
};

} // namespace tavik
