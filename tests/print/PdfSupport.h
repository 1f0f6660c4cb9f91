#pragma once
// Reading printed pages back: `tamrik print` on a project, the text of a PDF's pages as
// pdftotext reads it, and projects made from the sample with a few fields changed.
#include "common/TestSupport.h"
#include "persist/ProjectFile.h"
#include "platform/TextFile.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <functional>

namespace print_test {

// Runs a program to its end: its standard output, with the exit status and standard error.
inline QString runProgram(const QString& program, const QStringList& args, int* status = nullptr,
                          QString* err = nullptr) {
    QProcess p;
    p.start(program, args);
    p.waitForFinished(120000);
    if (status) *status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    if (err) *err = QString::fromUtf8(p.readAllStandardError());
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The text of a PDF's pages (all, or page p), as pdftotext reads it in its layout.
inline QString pdfText(const QString& file, int p = 0) {
    QStringList args;
    if (p > 0)
        args << QStringLiteral("-f") << QString::number(p) << QStringLiteral("-l") << QString::number(p);
    args << QStringLiteral("-layout") << file << QStringLiteral("-");
    QString text = runProgram(QStringLiteral("pdftotext"), args);
    // Money is grouped with no-break spaces.
    text.replace(QChar(0x00A0), QLatin1Char(' '));
    return text;
}

inline int pdfPages(const QString& file) {
    const QString info = runProgram(QStringLiteral("pdfinfo"), {file});
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)")).match(info);
    return m.hasMatch() ? m.captured(1).toInt() : -1;
}

// `tamrik print PROJECT --pdf OUT [--docs DOCS]`: the exit status, and standard error in `err`.
inline int printToPdf(const QString& project, const QString& out, const QString& docs = QString(),
                      QString* err = nullptr) {
    QStringList args{QStringLiteral("print"), project, QStringLiteral("--pdf"), out};
    if (!docs.isEmpty()) args << QStringLiteral("--docs") << docs;
    int status = -1;
    runProgram(testing_support::binaryDir() + QStringLiteral("/tamrik"), args, &status, err);
    return status;
}

inline QString sampleProject() {
    return testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
}

// Writes the sample project to `file` with its content changed by `change` (the pictures stay).
inline bool writeSampleVariant(const QString& file,
                               const std::function<void(persist::ProjectContent&)>& change) {
    persist::ProjectFile project;
    if (!persist::ReadProjectFile(sampleProject(), false, project, nullptr)) return false;
    change(project.content);
    project.members[0].data = persist::WriteProjectText(project.content, false);
    QFile out(file);
    return out.open(QIODevice::WriteOnly) && out.write(persist::PackContainer(project.members)) > 0;
}

// The window records of a project: 0 basic data, 1 detailed data (list 0 the quantity list,
// list 1 the requirements).
inline persist::ListRecord& quantityRecord(persist::ProjectContent& c) {
    return c.windows[1].lists[0];
}
inline persist::ListRecord& requirementRecord(persist::ProjectContent& c) {
    return c.windows[1].lists[1];
}

} // namespace print_test
