#include "lists/spreadsheet/Archive.h"

#include <QStringList>

#include <gsf/gsf-infile-zip.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-input.h>
#include <gsf/gsf-utils.h>

#include <mutex>

namespace lists::sheet {

namespace {

// No member of a spreadsheet comes near this; a larger promise is a damaged or hostile file.
constexpr qint64 kLargestMember = qint64(1) << 30;
constexpr qint64 kDeflateRatio = 1032;

struct Unref {
    void operator()(gpointer p) const {
        if (p) g_object_unref(p);
    }
};
using InputPtr = std::unique_ptr<GsfInput, Unref>;

// The child of a folder whose name equals `name` without regard to case (the exact name first).
GsfInput* childNamed(GsfInfile* folder, const QString& name) {
    const QByteArray utf8 = name.toUtf8();
    if (GsfInput* exact = gsf_infile_child_by_name(folder, utf8.constData())) return exact;
    const int count = gsf_infile_num_children(folder);
    for (int i = 0; i < count; ++i) {
        const char* childName = gsf_infile_name_by_index(folder, i);
        if (childName && QString::fromUtf8(childName).compare(name, Qt::CaseInsensitive) == 0)
            return gsf_infile_child_by_index(folder, i);
    }
    return nullptr;
}

} // namespace

struct Archive::Handles {
    InputPtr source;
    InputPtr root; // a GsfInfile
};

Archive::Archive(std::unique_ptr<Handles> handles)
    : m_handles(std::move(handles)) {}

Archive::~Archive() = default;

std::unique_ptr<Archive> Archive::open(const QByteArray& bytes, QString* error) {
    static std::once_flag once;
    std::call_once(once, [] {
        gsf_init();
        // A damaged file makes libgsf log what it found; the reader reports the failure itself.
        for (const char* domain : {"libgsf", "libgsf:zip"})
            g_log_set_handler(
                domain, GLogLevelFlags(G_LOG_LEVEL_MASK),
                [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
    });
    auto handles = std::make_unique<Handles>();
    handles->source.reset(
        gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes.constData()), bytes.size(), FALSE));
    GError* err = nullptr;
    GsfInfile* root = gsf_infile_zip_new(handles->source.get(), &err);
    if (!root) {
        // libgsf's reason is in English; what failed is said in the program's words.
        if (err) g_error_free(err);
        if (error) *error = QStringLiteral("ZIP-pakkaus on vahingoittunut");
        return nullptr;
    }
    handles->root.reset(GSF_INPUT(root));
    return std::unique_ptr<Archive>(new Archive(std::move(handles)));
}

namespace {

// libgsf gives files and folders the same type; only a folder has a count of children.
bool isFolder(GsfInput* input) {
    return GSF_IS_INFILE(input) && gsf_infile_num_children(GSF_INFILE(input)) >= 0;
}

InputPtr member(GsfInput* root, const QString& path) {
    InputPtr current(GSF_INPUT(g_object_ref(root)));
    for (const QString& part : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (!isFolder(current.get())) return nullptr;
        InputPtr child(childNamed(GSF_INFILE(current.get()), part));
        if (!child) return nullptr;
        current = std::move(child);
    }
    return current;
}

} // namespace

bool Archive::contains(const QString& path) const {
    return member(m_handles->root.get(), path) != nullptr;
}

Archive::Member::Member(void* input, QString path, qint64 size)
    : m_input(input)
    , m_path(std::move(path))
    , m_size(size) {}

Archive::Member::~Member() {
    g_object_unref(m_input);
}

qsizetype Archive::Member::read(char* to, qsizetype max) {
    const qint64 piece = std::min<qint64>(max, m_size - m_done);
    if (piece <= 0) return 0;
    if (!gsf_input_read(static_cast<GsfInput*>(m_input), static_cast<size_t>(piece),
                        reinterpret_cast<guint8*>(to))) {
        m_error = QStringLiteral("osa ") + m_path + QStringLiteral(" katkeaa tavun %1 kohdalla").arg(m_done);
        return -1;
    }
    m_done += piece;
    return static_cast<qsizetype>(piece);
}

std::unique_ptr<Archive::Member> Archive::openMember(const QString& path, QString* error) const {
    InputPtr input = member(m_handles->root.get(), path);
    if (!input || isFolder(input.get())) {
        if (error) *error = QStringLiteral("osa ") + path + QStringLiteral(" puuttuu");
        return nullptr;
    }
    // Deflate packs at most about 1032 bytes into one, so a member cannot unpack to more than
    // that many times the whole file; a larger size is a damaged entry (and libgsf may fill
    // what the data does not hold).
    const gsf_off_t size = gsf_input_size(input.get());
    const gsf_off_t most =
        std::min<gsf_off_t>(kLargestMember, gsf_input_size(m_handles->source.get()) * kDeflateRatio + 1024);
    if (size < 0 || size > most) {
        if (error) *error = QStringLiteral("osan ") + path + QStringLiteral(" koko on mahdoton");
        return nullptr;
    }
    return std::unique_ptr<Member>(new Member(input.release(), path, size));
}

bool Archive::read(const QString& path, QByteArray& out, QString* error, qint64 largest) const {
    const std::unique_ptr<Member> m = openMember(path, error);
    if (!m) return false;
    if (m->size() > largest) {
        if (error) *error = QStringLiteral("osa ") + path + QStringLiteral(" on liian suuri luettavaksi");
        return false;
    }
    // Read in pieces, so that a size that promises more than the data holds fails on the way.
    QByteArray data;
    data.reserve(static_cast<qsizetype>(m->size()));
    constexpr qsizetype kPiece = 1 << 16;
    for (;;) {
        const qsizetype at = data.size();
        data.resize(at + kPiece);
        const qsizetype n = m->read(data.data() + at, kPiece);
        data.resize(at + std::max<qsizetype>(n, 0));
        if (n == 0) break;
        if (n < 0) {
            if (error) *error = m->error();
            return false;
        }
    }
    out = std::move(data);
    return true;
}

bool looksLikeZip(const QByteArray& bytes) {
    return bytes.startsWith("PK\x03\x04") || bytes.startsWith("PK\x05\x06");
}

} // namespace lists::sheet
