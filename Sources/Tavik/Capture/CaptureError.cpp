#include "Capture/CaptureError.h"

#include <utility>

namespace tavik {

CaptureError::CaptureError(Kind kind, SourceInfo source)
    : errorKind(kind), errorSource(std::move(source)) {}

const char* CaptureError::what() const noexcept {
    switch (errorKind) {
    case Kind::notTrusted:
        return "需要「辅助功能」权限才能读取选中的文字";
    case Kind::nothingSelected:
        break;
    }
    return "没有读取到选中的文字";
}

} // namespace tavik
