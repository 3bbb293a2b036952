#pragma once

#include "Vocabulary/VocabularyRecords.h"

#include <exception>

namespace tavik {

/// Why nothing was captured.
class CaptureError : public std::exception {
public:
    enum class Kind {
        /// Applications may not be read.
        notTrusted,
        nothingSelected,
    };

    /// `source` is the application that was in front, as far as it was asked for.
    explicit CaptureError(Kind kind, SourceInfo source = {});

    Kind kind() const { return errorKind; }

    const SourceInfo& source() const { return errorSource; }

    /// In Chinese, for the user.
    const char* what() const noexcept override;

private:
    Kind errorKind;
    SourceInfo errorSource;
};

} // namespace tavik
