// Spreadsheet import (.xls, .xlsx, .xlsb, .ods) as a user imports a file: each input is written to a
// file in memory first, named by what its first bytes say, and read by its name.
#include "FuzzSupport.h"
#include "common/SlowUnwinder.h"
#include "lists/Spreadsheet.h"

#include <glib.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz::start(argc, argv);
    // libgsf's ZIP reader warns about every damaged header on the default log domain.
    g_log_set_default_handler([](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = fuzz::bytes(data, size);
    const char* extension = ".xls";
    if (bytes.startsWith("PK"))
        extension = bytes.indexOf("opendocument") >= 0 ? ".ods"
                    : bytes.indexOf(".bin") >= 0       ? ".xlsb"
                                                       : ".xlsx";
    static const QString dir =
        QFileInfo::exists(QStringLiteral("/dev/shm")) ? QStringLiteral("/dev/shm") : QDir::tempPath();
    const QString name = dir + QStringLiteral("/tamrik-fuzz-%1").arg(getpid()) + QLatin1String(extension);
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly)) return 0;
    file.write(bytes);
    file.close();
    std::vector<QStringList> rows;
    QString error;
    lists::readFirstSheet(name, 7, rows, &error);
    QFile::remove(name);
    return 0;
}
