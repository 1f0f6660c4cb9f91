#pragma once
// What every fuzz harness shares: a GUI application on the offscreen platform (fonts, text
// documents and SVG need one), a message facade that answers every box without showing it, and
// Qt's warnings kept off the fuzzer's output.
#include "platform/Dialogs.h"

#include <QByteArray>
#include <QGuiApplication>
#include <cstddef>
#include <cstdint>

namespace fuzz {

class QuietDialogs : public platform::Dialogs {
public:
    platform::MsgAnswer message(const platform::MessageRequest& request) override {
        return request.buttons == platform::MsgButtons::Ok ? platform::MsgAnswer::Ok
                                                           : platform::MsgAnswer::No;
    }
    QStringList files(const platform::FileRequest&) override { return {}; }
    std::optional<QFont> font(const QFont&) override { return std::nullopt; }
    std::optional<QColor> color(const QColor&) override { return std::nullopt; }
};

inline void start(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg) {
            fprintf(stderr, "%s\n", qPrintable(text));
            abort();
        }
    });
    static QGuiApplication application(*argc, *argv);
    static QuietDialogs dialogs;
    platform::Dialogs::install(&dialogs);
}

inline QByteArray bytes(const std::uint8_t* data, std::size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

} // namespace fuzz

#define TAMRIK_FUZZ_START                                                                                    \
    extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {                                           \
        fuzz::start(argc, argv);                                                                             \
        return 0;                                                                                            \
    }
