// Showing the pictures of a project: a metafile converted to SVG and drawn, as the picture
// boxes, the print preview and the printout do for every picture of a project they open.
#include "platform/Metafile.h"
#include "platform/Picture.h"

#include <QFile>
#include <QImage>
#include <benchmark/benchmark.h>

namespace {

QByteArray fileBytes(const char* name) {
    QFile file(QStringLiteral(TAMRIK_SOURCE_DIR "/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The shipped logo (lines, fills and text), a WMF of one line of text, and an EMF.
const char* const kMetafiles[] = {"data/Tamrik2006-logo.wmf", "tests/platform/data/text.wmf",
                                  "tests/platform/data/logo.emf"};

void BM_MetafileToSvg(benchmark::State& state) {
    const char* name = kMetafiles[state.range(0)];
    const QByteArray bytes = fileBytes(name);
    if (bytes.isEmpty()) {
        state.SkipWithError("the metafile was not found");
        return;
    }
    const bool wmf = platform::looksLikeWmf(bytes);
    for (auto _ : state) {
        const QByteArray svg = wmf ? platform::wmfToSvg(bytes) : platform::emfToSvg(bytes);
        benchmark::DoNotOptimize(svg.data());
    }
    state.SetLabel(name);
}
BENCHMARK(BM_MetafileToSvg)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

// A picture as a project's picture box first shows it: converted, sized and drawn.
void BM_MetafilePictureShown(benchmark::State& state) {
    const QByteArray bytes = fileBytes(kMetafiles[0]);
    for (auto _ : state) {
        const platform::Picture picture = platform::Picture::fromBytes(bytes, platform::Picture::Metafile);
        const QImage image = picture.toImage(QSize(200, 150));
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_MetafilePictureShown)->Unit(benchmark::kMicrosecond);

// An EMF recorded for a 1200-dpi printer copied to the clipboard: drawn at its paper size, where
// it was drawn at the printer's 14030 x 9920 pixels (570 MB and 3 s).
void BM_PrinterEmfCopied(benchmark::State& state) {
    const QByteArray bytes = fileBytes("tests/platform/data/printer-frame.emf");
    for (auto _ : state) {
        const platform::Picture picture =
            platform::Picture::fromBytes(bytes, platform::Picture::EnhancedMetafile);
        const QImage image = picture.toImage();
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_PrinterEmfCopied)->Unit(benchmark::kMillisecond);

} // namespace
