#include "Main/DiagnosticDirectory.h"

#include <QByteArray>
#include <QUuid>
#include <QtGlobal>
#include <string>
#include <system_error>

namespace tavik {

DiagnosticDirectory::DiagnosticDirectory()
    : directory(
        std::filesystem::temp_directory_path()
        / ("tavik-snapshot-" + QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString())) {
    qputenv("TAVIK_DATA_DIR", QByteArray::fromStdString(directory.string()));
}

DiagnosticDirectory::~DiagnosticDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
}

} // namespace tavik
