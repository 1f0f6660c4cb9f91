#pragma once
// The texts of one row's cells, kept in one block: a large list scans its rows one after the
// other, and a row whose cells are separate strings costs a heap block (and a cache miss) per
// cell. The block is a QString, so a copy of a row (an undo step, a window record being saved)
// shares it until one of them changes.
//
// Layout of the block: the first code unit holds the cell count (bit 15 set when the offsets
// are 32-bit), then one end offset per cell (16-bit, or two code units low then high when the
// texts together are longer than 65,535), then the texts one after the other.
//
// Beside the block a row keeps a memo: 64 bits that one calculation (the quality index) makes
// of what it reads from the row's texts, so that a run over an unchanged list reads 8 bytes a
// row instead of its texts. Every change of the texts drops it; copies, moves and swaps carry
// it along with the texts it was made from.
#include <QString>
#include <QStringList>
#include <QStringView>
#include <cstdint>
#include <utility>
#include <vector>

namespace lists {

class RowCells {
public:
    RowCells() = default;
    RowCells(const RowCells&) = default;
    RowCells& operator=(const RowCells&) = default;
    // A moved-from row is empty and so keeps no memo; QString's move assignment swaps, so the
    // memo is swapped along with it.
    RowCells(RowCells&& other) noexcept
        : m_d(std::move(other.m_d))
        , m_memo(other.m_memo) {
        other.m_memo = kNoMemo;
    }
    RowCells& operator=(RowCells&& other) noexcept {
        m_d.swap(other.m_d);
        std::swap(m_memo, other.m_memo);
        return *this;
    }
    friend void swap(RowCells& a, RowCells& b) noexcept {
        a.m_d.swap(b.m_d);
        std::swap(a.m_memo, b.m_memo);
    }
    // Rows are often built as a list of texts (readers, tests): converted once, here.
    RowCells(const QStringList& cells); // NOLINT(google-explicit-constructor)
    RowCells(std::initializer_list<QStringView> cells);
    explicit RowCells(const std::vector<QStringView>& cells);

    qsizetype size() const { return m_d.isEmpty() ? 0 : header() & kCountMask; }
    bool isEmpty() const { return size() == 0; }
    // The text of cell i (0-based); an empty view outside the row. Const, so that assigning
    // to it (which would change nothing) does not compile: changes go through set().
    const QStringView value(qsizetype i) const {
        const qsizetype n = size();
        if (i < 0 || i >= n) return {};
        const char16_t* p = units();
        if (!(p[0] & kWide)) {
            const char16_t* text = p + 1 + n;
            const qsizetype begin = i == 0 ? 0 : p[i];
            return QStringView(text + begin, p[1 + i] - begin);
        }
        const char16_t* text = p + 1 + 2 * n;
        const qsizetype begin = i == 0 ? 0 : wideOffset(p, i - 1);
        return QStringView(text + begin, wideOffset(p, i) - begin);
    }
    const QStringView operator[](qsizetype i) const { return value(i); }
    QStringList toStringList() const;
    // The number of code units of all cells' texts together.
    qsizetype textSize() const;

    // Changes rebuild the block (a row is small); a text of the same length is written in
    // place, so renumbering a list allocates nothing.
    void set(qsizetype i, QStringView text); // grows the row with empty cells to reach i
    void resize(qsizetype n);
    void append(QStringView text) { set(size(), text); }

    // The memo: kNoMemo until a calculation sets one, and again after any change of the texts.
    // A calculation's encoding never gives kNoMemo. Setting it is const because it is a cache
    // of the texts, not part of the row: a list is read and changed on the thread that owns it
    // (the windows' thread; a print run's second drawing thread only reads cells and never
    // runs the quality index), so no other thread reads the memo while it is written.
    static constexpr std::uint64_t kNoMemo = ~std::uint64_t{0};
    std::uint64_t memo() const { return m_memo; }
    void setMemo(std::uint64_t memo) const { m_memo = memo; }

    // Whether both share one block, as a copy does until either changes: their texts are then
    // the same. Tells so without reading the block.
    bool sharesBlockWith(const RowCells& other) const {
        return m_d.constData() == other.m_d.constData() && m_d.size() == other.m_d.size();
    }

    // Rows are equal when their texts are; the memo is no part of the value.
    friend bool operator==(const RowCells& a, const RowCells& b) { return a.m_d == b.m_d; }
    friend bool operator!=(const RowCells& a, const RowCells& b) { return !(a == b); }

    // Builds rows cell by cell; one builder can build any number of rows, reusing its buffers.
    class Builder {
    public:
        void add(QStringView text) {
            m_text.append(text);
            m_ends.push_back(static_cast<std::uint32_t>(m_text.size()));
        }
        void addEmpty(qsizetype count) {
            for (qsizetype k = 0; k < count; ++k)
                m_ends.push_back(static_cast<std::uint32_t>(m_text.size()));
        }
        qsizetype size() const { return static_cast<qsizetype>(m_ends.size()); }
        // The row built so far; the builder starts a new, empty row.
        RowCells take();

    private:
        QString m_text;
        std::vector<std::uint32_t> m_ends;
    };

private:
    static constexpr char16_t kWide = 0x8000;
    static constexpr char16_t kCountMask = 0x7fff;
    char16_t header() const { return m_d.front().unicode(); }
    const char16_t* units() const { return reinterpret_cast<const char16_t*>(m_d.constData()); }
    static qsizetype wideOffset(const char16_t* p, qsizetype i) {
        return static_cast<qsizetype>(p[1 + 2 * i]) | (static_cast<qsizetype>(p[2 + 2 * i]) << 16);
    }
    static RowCells make(const QStringView* cells, qsizetype n);
    static RowCells make(const std::uint32_t* ends, qsizetype n, QStringView text);

    QString m_d;
    mutable std::uint64_t m_memo = kNoMemo;
};

} // namespace lists
