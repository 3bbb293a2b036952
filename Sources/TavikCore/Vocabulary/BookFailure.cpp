#include "Vocabulary/BookFailure.h"

namespace tavik {
namespace {

std::string advice(const std::string& book, const SQLiteDB::Error& error) {
    using Cause = SQLiteDB::Error::Cause;
    switch (error.cause) {
    case Cause::busy:
        return book + " 正被另一个程序占用，请稍后再试";
    case Cause::readOnly:
        return book + " 是只读的，请检查文件和目录的权限";
    case Cause::cannotOpen:
        return "打不开" + book + "，请检查目录是否存在、权限是否足够";
    case Cause::full:
        return "磁盘满了，" + book + " 没有写成，请腾出空间再试";
    case Cause::damaged:
        return book + " 已损坏，或者不是 Tavik 的生词本，请用 tavik-cli restore 从备份恢复";
    case Cause::inputOutput:
        return "读写" + book + " 时磁盘出错，请检查磁盘的空间和状况";
    case Cause::other:
        break;
    }
    if (error.message.find("already exists") != std::string::npos)
        return book + " 没有建完。如果里面还没有单词，请把这个文件移走再试，否则请从备份恢复";
    return book + " 出错。如果一再这样，请用 tavik-cli restore 从备份恢复";
}

} // namespace

std::string bookFailure(const std::string& path, const SQLiteDB::Error& error) {
    return advice("生词本 " + path, error) + "（" + error.message + "）";
}

} // namespace tavik
