#include "print/PdfOutput.h"

#include "print/OtherThreads.h"
#include "print/Outline.h"
#include "print/PageCompression.h"
#include "print/Reports.h"

#include <QBuffer>
#include <QFileInfo>
#include <QPdfWriter>
#include <QSaveFile>
#include <QThread>
#include <QTimeZone>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <atomic>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace print {

namespace {

using Object = QPDFObjectHandle;

// qpdf's output into the save file. qpdf hands over a token or a line at a time; they are
// gathered into blocks, so the file sees a few hundred writes instead of a few hundred thousand.
class DevicePipeline final : public Pipeline {
public:
    // A set `cancel` stops the writing at its next block (with an exception).
    DevicePipeline(QIODevice& device, const std::atomic<bool>& cancel)
        : Pipeline("save file", nullptr)
        , m_device(device)
        , m_cancel(cancel) {
        m_block.reserve(kBlock);
    }
    void write(unsigned char const* data, size_t length) override {
        if (m_cancel) throw std::runtime_error("cancelled");
        if (m_block.size() + length > kBlock) flush();
        if (length >= kBlock)
            put(reinterpret_cast<const char*>(data), length);
        else
            m_block.append(reinterpret_cast<const char*>(data), length);
    }
    void finish() override { flush(); }

private:
    static constexpr size_t kBlock = 256 * 1024;
    void flush() {
        put(m_block.data(), m_block.size());
        m_block.clear();
    }
    void put(const char* data, size_t length) {
        if (length == 0) return;
        if (m_device.write(data, static_cast<qint64>(length)) != static_cast<qint64>(length))
            throw std::runtime_error(m_device.errorString().toStdString());
    }

    QIODevice& m_device;
    const std::atomic<bool>& m_cancel;
    std::string m_block;
};

Object text(const QString& s) {
    return Object::newUnicodeString(s.toStdString());
}

// "D:20261126013152+02'00'": a date of the document information dictionary.
QString pdfDate(const QDateTime& t) {
    const int offset = t.offsetFromUtc() / 60;
    const QString zone = offset == 0 ? QStringLiteral("Z")
                                     : QStringLiteral("%1%2'%3'")
                                           .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                                           .arg(std::abs(offset) / 60, 2, 10, QLatin1Char('0'))
                                           .arg(std::abs(offset) % 60, 2, 10, QLatin1Char('0'));
    return QStringLiteral("D:") + t.toString(QStringLiteral("yyyyMMddHHmmss")) + zone;
}

// The same moment as XMP writes it: "2026-11-26T01:31:52+02:00".
QString xmpDate(const QDateTime& t) {
    return t.toOffsetFromUtc(t.offsetFromUtc()).toString(Qt::ISODate);
}

// The XMP packet: the properties as the information dictionary has them (an archival reader
// compares the two), and for PDF/A the part and conformance it claims.
QByteArray xmpPacket(const PdfProperties& p, bool archival) {
    auto esc = [](const QString& s) { return s.toHtmlEscaped(); };
    QString x;
    x += QStringLiteral("<?xpacket begin=\"\uFEFF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
                        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
                        " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
                        "  <rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n"
                        "   <dc:format>application/pdf</dc:format>\n");
    x += QStringLiteral(
             "   <dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">%1</rdf:li></rdf:Alt></dc:title>\n")
             .arg(esc(p.title));
    if (!p.author.isEmpty())
        x += QStringLiteral("   <dc:creator><rdf:Seq><rdf:li>%1</rdf:li></rdf:Seq></dc:creator>\n")
                 .arg(esc(p.author));
    x += QStringLiteral("   <dc:description><rdf:Alt><rdf:li xml:lang=\"x-default\">%1</rdf:li></rdf:Alt>"
                        "</dc:description>\n")
             .arg(esc(p.subject));
    x += QStringLiteral("  </rdf:Description>\n"
                        "  <rdf:Description rdf:about=\"\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\">\n"
                        "   <xmp:CreatorTool>%1</xmp:CreatorTool>\n"
                        "   <xmp:CreateDate>%2</xmp:CreateDate>\n"
                        "   <xmp:ModifyDate>%2</xmp:ModifyDate>\n"
                        "   <xmp:MetadataDate>%2</xmp:MetadataDate>\n"
                        "  </rdf:Description>\n"
                        "  <rdf:Description rdf:about=\"\" xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\">\n"
                        "   <pdf:Producer>%3</pdf:Producer>\n"
                        "  </rdf:Description>\n")
             .arg(esc(p.creator), xmpDate(p.created), esc(p.producer));
    if (archival)
        x += QStringLiteral(
            "  <rdf:Description rdf:about=\"\" xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\">\n"
            "   <pdfaid:part>1</pdfaid:part>\n"
            "   <pdfaid:conformance>B</pdfaid:conformance>\n"
            "  </rdf:Description>\n");
    x += QStringLiteral(" </rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>");
    return x.toUtf8();
}

// Adds `marks` under `parent` and returns how many items show under it when it is open.
int addBookmarks(QPDF& pdf, Object parent, const std::vector<Bookmark>& marks,
                 const std::vector<Object>& pages, bool openDocuments) {
    std::vector<Object> items;
    int visible = 0;
    for (const Bookmark& mark : marks) {
        if (mark.page < 1 || mark.page > static_cast<int>(pages.size())) continue;
        Object item = pdf.makeIndirectObject(Object::newDictionary());
        item.replaceKey("/Title", text(mark.title));
        item.replaceKey("/Parent", parent);
        // The top of the page, the reader's zoom kept.
        Object page = pages[mark.page - 1];
        Object box = QPDFPageObjectHelper(page).getMediaBox();
        const double top = box.isRectangle() ? box.getArrayAsRectangle().ury : 842;
        item.replaceKey("/Dest", Object::newArray({page, Object::newName("/XYZ"), Object::newNull(),
                                                   Object::newReal(top, 2), Object::newNull()}));
        if (!items.empty()) {
            items.back().replaceKey("/Next", item);
            item.replaceKey("/Prev", items.back());
        }
        items.push_back(item);
        ++visible;
        if (!mark.children.empty()) {
            const int below = addBookmarks(pdf, item, mark.children, pages, false);
            item.replaceKey("/Count", Object::newInteger(openDocuments ? below : -below));
            if (openDocuments) visible += below;
        }
    }
    if (!items.empty()) {
        parent.replaceKey("/First", items.front());
        parent.replaceKey("/Last", items.back());
    }
    return visible;
}

// A PDF that Qt wrote in memory, read by qpdf with every object parsed and the pages listed,
// so that joining and rewriting it only copies. `data` must outlive it. Each half of a run is
// read on the thread that drew it.
std::unique_ptr<QPDF> readWritten(const QByteArray& data) {
    auto pdf = std::make_unique<QPDF>();
    pdf->setSuppressWarnings(true);
    pdf->processMemoryFile("PDF", data.constData(), static_cast<size_t>(data.size()));
    (void)pdf->getAllObjects();
    QPDFPageDocumentHelper(*pdf).pushInheritedAttributesToPage();
    return pdf;
}

// Rewrites the PDF that Qt wrote, the pages of `rest` (when there is one) after its own, with the
// outline, the information dictionary and the XMP metadata, into `out`.
void finishPdf(QPDF& pdf, QPDF* rest, const std::vector<Bookmark>& outline, const PdfProperties& properties,
               bool archival, QIODevice& out, const std::atomic<bool>& cancel) {
    Object root = pdf.getRoot();
    if (rest) {
        // The pages drawn on another thread follow; their streams are read from `rest` as the
        // file is written.
        QPDFPageDocumentHelper pages(pdf);
        for (QPDFPageObjectHelper& page : QPDFPageDocumentHelper(*rest).getAllPages())
            pages.addPage(page, false);
    }

    if (!outline.empty()) {
        Object outlines = pdf.makeIndirectObject(Object::newDictionary());
        outlines.replaceKey("/Type", Object::newName("/Outlines"));
        const int visible = addBookmarks(pdf, outlines, outline, pdf.getAllPages(), outline.size() == 1);
        outlines.replaceKey("/Count", Object::newInteger(visible));
        root.replaceKey("/Outlines", outlines);
        root.replaceKey("/PageMode", Object::newName("/UseOutlines"));
    }

    Object info = pdf.makeIndirectObject(Object::newDictionary());
    info.replaceKey("/Title", text(properties.title));
    if (!properties.author.isEmpty()) info.replaceKey("/Author", text(properties.author));
    info.replaceKey("/Subject", text(properties.subject));
    info.replaceKey("/Creator", text(properties.creator));
    info.replaceKey("/Producer", text(properties.producer));
    info.replaceKey("/CreationDate", text(pdfDate(properties.created)));
    info.replaceKey("/ModDate", text(pdfDate(properties.created)));
    pdf.getTrailer().replaceKey("/Info", info);

    const QByteArray xmp = xmpPacket(properties, archival);
    Object metadata = pdf.newStream(std::string(xmp.constData(), static_cast<size_t>(xmp.size())));
    metadata.getDict().replaceKey("/Type", Object::newName("/Metadata"));
    metadata.getDict().replaceKey("/Subtype", Object::newName("/XML"));
    root.replaceKey("/Metadata", metadata);

    QPDFWriter writer(pdf);
    DevicePipeline pipeline(out, cancel);
    writer.setOutputPipeline(&pipeline);
    // Qt's streams are copied as they are; the XMP stays uncompressed, as PDF/A asks.
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.setObjectStreamMode(qpdf_o_disable);
    writer.write();
    pipeline.finish();
}

// The last page of the first half when a run is drawn in two halves of about the same work. A
// page of the cost estimate draws about 1.4 times what a quantity list page draws (the unit
// prices and sums besides the same rows); the other pages count alike.
int halfway(const PrintRun& run) {
    auto weight = [&](int p) { return run.entry(p).document == doc::Costs ? 1.4 : 1.0; };
    const int total = run.TotalPages();
    double all = 0;
    for (int p = 1; p <= total; ++p)
        all += weight(p);
    double done = 0;
    for (int p = 1; p < total; ++p) {
        done += weight(p);
        if (done >= all / 2) return p;
    }
    return total;
}

// How Qt writes each half of a run's pages into memory.
struct PdfWriterSettings {
    QString title;
    QPageLayout layout;
    int resolution;
    bool archival;

    std::unique_ptr<QPdfWriter> make(QIODevice* out) const {
        auto writer = std::make_unique<QPdfWriter>(out);
        writer->setCreator(QStringLiteral("TAMRIK 2006"));
        writer->setTitle(title);
        if (archival) writer->setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
        writer->setResolution(resolution);
        writer->setPageLayout(layout);
        return writer;
    }
};

// The pages of a run as Qt wrote them into memory, and each half as qpdf reads it, read on the
// thread that drew it. The bytes are declared first, so that they outlive the documents read
// from them.
struct DrawnPdf {
    QBuffer head;
    QByteArray tail;
    std::unique_ptr<QPDF> headPdf;
    std::unique_ptr<QPDF> tailPdf;
    // A failure to read either half, reported with the rewrite's.
    std::exception_ptr readError;

    void readHead() {
        try {
            headPdf = readWritten(head.data());
        } catch (...) {
            readError = std::current_exception();
        }
    }
};

// Draws pages split + 1 … total into a PDF of their own on another thread while this thread
// draws pages 1 … split with `writer`, which it then closes. The caller hears of the pages of
// both halves from this thread.
OutputResult drawInTwoHalves(PrintRun& run, std::unique_ptr<QPdfWriter>& writer,
                             const PdfWriterSettings& settings, int split, const Progress& progress,
                             DrawnPdf& drawn) {
    const int total = run.TotalPages();
    std::unique_ptr<PrintRun> copy = run.drawingCopy();
    std::atomic<int> tailDrawn{0};
    std::atomic<bool> cancel{false};
    OutputResult tailResult = OutputResult::Cancelled;
    std::exception_ptr tailError;
    OtherThreads others;
    others.start([&] {
        const FastPageCompression fast;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        {
            std::unique_ptr<QPdfWriter> tailWriter = settings.make(&buffer);
            tailResult = copy->PrintPages(*tailWriter, split + 1, total, [&](int, double) {
                ++tailDrawn;
                return !cancel;
            });
        }
        drawn.tail = buffer.data();
        if (tailResult != OutputResult::Printed) return;
        try {
            drawn.tailPdf = readWritten(drawn.tail);
        } catch (...) {
            tailError = std::current_exception();
        }
    });
    OutputResult result = run.PrintPages(*writer, 1, split, [&](int p, double) {
        const int drawn = p + tailDrawn;
        if (progress && !progress(drawn, static_cast<double>(drawn) / total)) cancel = true;
        return !cancel;
    });
    if (result != OutputResult::Printed) cancel = true;
    // The first half's file is complete when its writer is gone.
    writer.reset();
    if (result == OutputResult::Printed) others.start([&] { drawn.readHead(); });
    const bool cancelled = others.wait(
        progress, [&] { return split + tailDrawn; }, total, cancel);
    if (result == OutputResult::Printed) result = cancelled ? OutputResult::Cancelled : tailResult;
    if (!drawn.readError) drawn.readError = tailError;
    for (const QString& message : copy->messages())
        run.inform(message);
    return result;
}

// Paginates the run and draws all its pages into `drawn`, a long run in two halves at once.
OutputResult drawPages(PrintRun& run, const PdfWriterSettings& settings, const Progress& progress,
                       const PdfOptions& options, DrawnPdf& drawn) {
    // Pages compressed fast: the writers compress each page as it ends, the last one when
    // they are destroyed, all inside this function.
    const FastPageCompression fast;
    std::unique_ptr<QPdfWriter> writer = settings.make(&drawn.head);
    OutputResult result = run.PaginateFor(*writer, progress);
    if (result != OutputResult::Printed) return result;
    const int total = run.TotalPages();
    // Pages are drawn independently: a long run is drawn half on another thread, into a
    // PDF of its own that qpdf joins to the first. Qt compresses each page as it ends it, so
    // both halves' drawing and compressing go on at once, and so does qpdf's reading of them.
    const int split =
        options.parallelFrom > 0 && total >= options.parallelFrom && QThread::idealThreadCount() > 1
            ? halfway(run)
            : total;
    if (split < total) return drawInTwoHalves(run, writer, settings, split, progress, drawn);
    result = run.PrintPages(*writer, 1, total, progress);
    writer.reset();
    if (result != OutputResult::Printed) return result;
    OtherThreads reading;
    reading.start([&] { drawn.readHead(); });
    std::atomic<bool> cancel{false};
    return reading.wait(
               progress, [total] { return total; }, total, cancel)
               ? OutputResult::Cancelled
               : result;
}

} // namespace

PdfProperties DocumentProperties(const PrintRun& run, const PdfOptions& options) {
    PdfProperties p;
    const Selection& selection = run.selection();
    QStringList documents;
    int firstDocument = -1;
    for (int d = 0; d < kDocumentCount; ++d) {
        if (!selection.DocumentSelected[d]) continue;
        if (firstDocument < 0) firstDocument = d;
        QString title = DocumentTitle(d, selection.WorkPhaseFilter[d]);
        // The cards have no title on their page; their box names them.
        if (title.isEmpty()) title = SelectionCaption(d).mid(3);
        documents << title;
    }
    if (run.comparison()) documents << DocumentTitle(doc::Comparison, QString());
    const QString bridge = run.source().basicText(basic::BridgeName).trimmed();
    p.title = documents.join(QStringLiteral(", "));
    if (!bridge.isEmpty()) p.title = bridge + QStringLiteral(" – ") + p.title;
    if (firstDocument >= 0) p.author = PartiesOf(run, firstDocument).drewUp.trimmed();
    p.subject = QStringLiteral("TAMRIK-projekti");
    if (!options.projectFile.isEmpty())
        p.subject += QLatin1Char(' ') + QFileInfo(options.projectFile).fileName();
    p.creator = QStringLiteral("TAMRIK 2006 ") + QStringLiteral(TAMRIK_VERSION);
    p.producer = QStringLiteral("Qt ") + QString::fromLatin1(qVersion()) + QStringLiteral(", qpdf ") +
                 QString::fromStdString(QPDF::QPDFVersion());
    // Whole seconds: the information dictionary and the XMP cannot say more.
    p.created = options.created;
    p.created.setTime(QTime(p.created.time().hour(), p.created.time().minute(), p.created.time().second()));
    return p;
}

OutputResult WritePdf(PrintRun& run, const QString& fileName, const QPageLayout& layout, int resolution,
                      const Progress& progress, QString* error, const PdfOptions& options) {
    QSaveFile file(fileName);
    auto fail = [&](const QString& why) {
        if (error)
            *error = QStringLiteral("Tiedostoa ") + fileName + QStringLiteral(" ei voi kirjoittaa: ") + why;
        return OutputResult::DeviceFailed;
    };
    if (!file.open(QIODevice::WriteOnly)) return fail(file.errorString());
    // Qt writes the pages into memory; the file gets them with their outline.
    const PdfWriterSettings settings{QFileInfo(fileName).completeBaseName(), layout, resolution,
                                     options.archival};
    DrawnPdf drawn;
    drawn.head.open(QIODevice::WriteOnly);
    const OutputResult result = drawPages(run, settings, progress, options, drawn);
    // An unfinished file is thrown away with the save file.
    if (result != OutputResult::Printed) {
        file.cancelWriting();
        return result == OutputResult::DeviceFailed ? fail(file.errorString()) : result;
    }
    // The outline and the properties are gathered here; the file is written on another thread.
    const std::vector<Bookmark> outline = RunOutline(run);
    const PdfProperties properties = DocumentProperties(run, options);
    std::exception_ptr failure;
    std::atomic<bool> cancel{false};
    OtherThreads writing;
    writing.start([&] {
        try {
            if (drawn.readError) std::rethrow_exception(drawn.readError);
            finishPdf(*drawn.headPdf, drawn.tailPdf.get(), outline, properties, options.archival, file,
                      cancel);
        } catch (...) {
            failure = std::current_exception();
        }
    });
    const int total = run.TotalPages();
    if (writing.wait(
            progress, [total] { return total; }, total, cancel)) {
        file.cancelWriting();
        return OutputResult::Cancelled;
    }
    if (failure) {
        file.cancelWriting();
        try {
            std::rethrow_exception(failure);
        } catch (const std::exception& e) {
            return fail(file.error() != QFileDevice::NoError ? file.errorString()
                                                             : QString::fromLocal8Bit(e.what()));
        } catch (...) {
            return fail(file.errorString());
        }
    }
    if (options.endsProcess) {
        // Left to the end of the process, which follows (see PdfOptions::endsProcess).
        (void)drawn.headPdf.release();
        (void)drawn.tailPdf.release();
    }
    if (!file.commit()) return fail(file.errorString());
    return OutputResult::Printed;
}

} // namespace print
