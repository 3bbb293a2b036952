#include "TavikCLI/DictionaryFile.h"

#include "Base/ResourceFile.h"

#include <iostream>
#include <stdexcept>

namespace tavik {

std::unique_ptr<OfflineDictionary> openDictionary(const std::string& path) {
    const std::string file = path.empty() ? resourceFile("dict.sqlite").string() : path;
    std::unique_ptr<OfflineDictionary> dictionary;
    try {
        dictionary = std::make_unique<OfflineDictionary>(file);
    } catch (const SQLiteDB::Error& error) {
        throw std::runtime_error("打不开词典 " + file
                                 + "：文件不存在或不可读。请用 tavik-dict 生成词典（"
                                 + error.message + "）");
    }
    try {
        dictionary->verify();
    } catch (const SQLiteDB::Error& error) {
        throw std::runtime_error("词典 " + file
                                 + " 已损坏，或者不是 Tavik 的词典。请用 tavik-dict 重新生成（"
                                 + error.message + "）");
    }
    return dictionary;
}

std::unique_ptr<OfflineDictionary> openDictionaryIfAny(const std::string& path) {
    if (!path.empty()) return openDictionary(path);
    try {
        return openDictionary(path);
    } catch (const std::runtime_error& error) {
        std::cerr << "提示：" << error.what() << '\n';
        return nullptr;
    }
}

} // namespace tavik
