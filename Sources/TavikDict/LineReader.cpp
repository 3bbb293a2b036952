#include "TavikDict/LineReader.h"

#include "TavikDict/BuildError.h"
#include "Text/Unicode.h"

namespace tavik {

LineReader::LineReader(const std::filesystem::path& path)
    : path(path), file(path, std::ios::binary) {
    if (!file) throw BuildError("打不开 " + path.string() + "：文件不存在或不可读");
}

bool LineReader::next() {
    constexpr std::string_view byteOrderMark = "\uFEFF";
    if (!std::getline(file, current)) {
        if (file.bad()) throw BuildError("读 " + path.string() + " 时出错");
        return false;
    }
    ++lineNumber;
    if (!current.empty() && current.back() == '\r') current.pop_back();
    if (lineNumber == 1 && current.rfind(byteOrderMark, 0) == 0)
        current.erase(0, byteOrderMark.size());
    return true;
}

bool LineReader::isCleanText() const {
    return isValidUTF8(current) && printable(current) == current;
}

} // namespace tavik
