#include "print/CardLayout.h"

#include "platform/ReadError.h"
#include "platform/TextFile.h"

#include <QFileInfo>
#include <QStringList>

namespace print {

namespace {

// No card has more records than this; a larger count is a damaged file, not a reason to
// reserve memory.
constexpr int kMaxRecords = 10000;
constexpr int kMaxTwips = 1000000;

struct Reader {
    QStringList lines;
    int next = 0;       // index of the next line to read
    int lineNumber = 0; // 1-based number of the line last read
    QString problem;

    // The next non-blank line; false at the end of the file.
    bool nextLine(QString& line) {
        while (next < lines.size() && lines[next].trimmed().isEmpty())
            ++next;
        if (next >= lines.size()) {
            lineNumber = static_cast<int>(lines.size()) + 1;
            problem = QStringLiteral("tiedosto loppuu kesken");
            return false;
        }
        lineNumber = next + 1;
        line = lines[next++];
        return true;
    }

    // The quoted field whose opening quote is at `i`, a doubled quote standing for one; `i` ends
    // past the blanks after the closing quote. False when the closing quote is missing.
    bool quotedField(const QString& line, int& i, QString& field) {
        const int n = static_cast<int>(line.size());
        ++i;
        bool closed = false;
        while (i < n) {
            if (line[i] == u'"') {
                if (i + 1 < n && line[i + 1] == u'"') {
                    field += u'"';
                    i += 2;
                    continue;
                }
                ++i;
                closed = true;
                break;
            }
            field += line[i++];
        }
        if (!closed) {
            problem = QStringLiteral("lainausmerkki puuttuu");
            return false;
        }
        while (i < n && line[i] == u' ')
            ++i;
        return true;
    }

    // The fields of the next non-blank line; false at the end of the file or on a broken quote.
    bool record(QStringList& fields, QList<bool>& quoted) {
        QString line;
        if (!nextLine(line)) return false;
        fields.clear();
        quoted.clear();
        int i = 0;
        const int n = static_cast<int>(line.size());
        while (true) {
            while (i < n && line[i] == u' ')
                ++i;
            QString field;
            const bool isQuoted = i < n && line[i] == u'"';
            if (isQuoted) {
                if (!quotedField(line, i, field)) return false;
            } else {
                while (i < n && line[i] != u',')
                    field += line[i++];
                field = field.trimmed();
            }
            fields.append(field);
            quoted.append(isQuoted);
            if (i >= n) break;
            if (line[i] != u',') {
                problem = QStringLiteral("pilkku puuttuu");
                return false;
            }
            ++i;
        }
        return true;
    }

    static bool number(const QString& text, int& value, int low, int high) {
        bool ok = false;
        const int v = text.toInt(&ok);
        if (!ok || v < low || v > high) return false;
        value = v;
        return true;
    }

    // A record of `shape`: 's' a text, 'n' a number.
    bool fields(const char* shape, QStringList& out) {
        QList<bool> quoted;
        if (!record(out, quoted)) return false;
        const int want = static_cast<int>(qstrlen(shape));
        if (out.size() != want) {
            problem = QStringLiteral("rivillä pitäisi olla %1 arvoa, siinä on %2").arg(want).arg(out.size());
            return false;
        }
        for (int i = 0; i < want; ++i) {
            if (shape[i] == 's' && !quoted[i]) {
                problem = QStringLiteral("arvon %1 pitäisi olla teksti lainausmerkeissä").arg(i + 1);
                return false;
            }
            int dummy = 0;
            if (shape[i] == 'n' && (quoted[i] || !number(out[i], dummy, -kMaxTwips, kMaxTwips))) {
                problem = QStringLiteral("arvo %1 ei ole kelvollinen luku").arg(i + 1);
                return false;
            }
        }
        return true;
    }

    bool count(int& n) {
        QStringList f;
        if (!fields("n", f)) return false;
        if (!number(f[0], n, 0, kMaxRecords)) {
            problem = QStringLiteral("lukumäärä %1 ei kelpaa").arg(f[0]);
            return false;
        }
        return true;
    }

    bool lineBlock(std::vector<CardLine>& out) {
        int n = 0;
        if (!count(n)) return false;
        for (int k = 0; k < n; ++k) {
            QStringList f;
            if (!fields("nnnnn", f)) return false;
            out.push_back({f[0].toInt(), f[1].toInt(), f[2].toInt(), f[3].toInt(), f[4].toInt()});
        }
        return true;
    }

    bool slotBlock(std::vector<CardSlot>& out) {
        int n = 0;
        if (!count(n)) return false;
        for (int k = 0; k < n; ++k) {
            QStringList f;
            if (!fields("snnn", f)) return false;
            int alignment = 0;
            if (!number(f[3], alignment, 0, 5)) {
                problem = QStringLiteral("tasaus %1 ei kelpaa (0..5)").arg(f[3]);
                return false;
            }
            out.push_back({f[0], f[1].toInt(), f[2].toInt(), alignment});
        }
        return true;
    }
};

} // namespace

bool ReadCardLayout(const QByteArray& bytes, const QString& name, bool withTable, CardLayout& layout,
                    QString* error, platform::ReadError* where) {
    Reader r;
    r.lines = platform::splitLines(platform::decodeText(bytes));
    CardLayout out;
    auto parse = [&]() {
        QStringList f;
        if (!r.fields("s", f)) return false;
        out.font = f[0];
        if (!r.fields("nn", f)) return false;
        if (!Reader::number(f[0], out.width, 1, kMaxTwips) ||
            !Reader::number(f[1], out.height, 1, kMaxTwips)) {
            r.problem = QStringLiteral("kortin koko ei kelpaa");
            return false;
        }
        int n = 0;
        if (!r.count(n)) return false;
        for (int k = 0; k < n; ++k) {
            if (!r.fields("snnn", f)) return false;
            out.texts.push_back({f[0], f[1].toInt(), f[2].toInt(), f[3].toInt()});
        }
        if (!r.lineBlock(out.lines)) return false;
        if (!r.slotBlock(out.fieldSlots)) return false;
        if (withTable) {
            if (!r.slotBlock(out.tableColumns)) return false;
            if (!r.lineBlock(out.tableArea)) return false;
        }
        return true;
    };
    if (!parse()) {
        // A layout is read by whole lines: the place is the line.
        const platform::ReadError failure{r.problem, {}, {}, -1, r.lineNumber, -1};
        if (error)
            *error = QStringLiteral("Korttitiedosto %1 on virheellinen (%2).").arg(name, failure.text());
        platform::fail(where, failure);
        return false;
    }
    layout = std::move(out);
    return true;
}

bool ReadCardLayoutFile(const QString& appPath, const QString& name, bool withTable, CardLayout& layout,
                        QString* error, QString* detail) {
    const QString path = appPath + name;
    QByteArray bytes;
    QString why;
    const QFileInfo info(path);
    if (!info.exists())
        why = QStringLiteral("tiedostoa ei ole");
    else if (!info.isFile())
        why = QStringLiteral("se ei ole tiedosto");
    else if (!info.isReadable())
        why = QStringLiteral("lukuoikeus puuttuu");
    if (!why.isEmpty() || !platform::readFileBytes(path, bytes, &why)) {
        if (error)
            *error =
                QStringLiteral("Korttitiedostoa %1 ei voi lukea, joten korttia ei voi tulostaa.").arg(name);
        if (detail) *detail = path + QStringLiteral(": ") + why;
        return false;
    }
    return ReadCardLayout(bytes, name, withTable, layout, error);
}

} // namespace print
