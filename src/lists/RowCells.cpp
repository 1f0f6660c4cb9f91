#include "lists/RowCells.h"

#include <algorithm>

namespace lists {

RowCells RowCells::make(const std::uint32_t* ends, qsizetype n, QStringView text) {
    RowCells out;
    if (n <= 0) return out;
    n = std::min<qsizetype>(n, kCountMask);
    const qsizetype total = text.size();
    const bool wide = total > 0xffff;
    const qsizetype offsets = wide ? 2 * n : n;
    out.m_d = QString(1 + offsets + total, Qt::Uninitialized);
    auto* p = reinterpret_cast<char16_t*>(out.m_d.data());
    p[0] = static_cast<char16_t>(n | (wide ? kWide : 0));
    for (qsizetype i = 0; i < n; ++i) {
        if (wide) {
            p[1 + 2 * i] = static_cast<char16_t>(ends[i] & 0xffff);
            p[2 + 2 * i] = static_cast<char16_t>(ends[i] >> 16);
        } else {
            p[1 + i] = static_cast<char16_t>(ends[i]);
        }
    }
    std::copy(text.utf16(), text.utf16() + total, p + 1 + offsets);
    return out;
}

RowCells RowCells::make(const QStringView* cells, qsizetype n) {
    Builder b;
    for (qsizetype i = 0; i < n; ++i)
        b.add(cells[i]);
    return b.take();
}

RowCells RowCells::Builder::take() {
    RowCells out = make(m_ends.data(), size(), m_text);
    m_text.resize(0);
    m_ends.clear();
    return out;
}

RowCells::RowCells(const QStringList& cells) {
    Builder b;
    for (const QString& c : cells)
        b.add(c);
    *this = b.take();
}

RowCells::RowCells(std::initializer_list<QStringView> cells)
    : RowCells(make(cells.begin(), static_cast<qsizetype>(cells.size()))) {}

RowCells::RowCells(const std::vector<QStringView>& cells)
    : RowCells(make(cells.data(), static_cast<qsizetype>(cells.size()))) {}

QStringList RowCells::toStringList() const {
    QStringList out;
    const qsizetype n = size();
    out.reserve(n);
    for (qsizetype i = 0; i < n; ++i)
        out.append(value(i).toString());
    return out;
}

qsizetype RowCells::textSize() const {
    const qsizetype n = size();
    if (n == 0) return 0;
    const char16_t* p = units();
    return (p[0] & kWide) ? wideOffset(p, n - 1) : p[n];
}

void RowCells::set(qsizetype i, QStringView text) {
    if (i < 0) return;
    const qsizetype n = size();
    if (i < n) {
        const QStringView old = value(i);
        if (old.size() == text.size()) {
            if (old == text) return;
            // Same length: the offsets stay, only the text changes.
            const qsizetype at = old.utf16() - units();
            auto* p = reinterpret_cast<char16_t*>(m_d.data()); // detaches a shared block
            std::copy(text.utf16(), text.utf16() + text.size(), p + at);
            m_memo = kNoMemo;
            return;
        }
    }
    Builder b;
    for (qsizetype k = 0; k < std::max(n, i + 1); ++k)
        b.add(k == i ? text : value(k));
    *this = b.take();
}

void RowCells::resize(qsizetype n) {
    n = std::max<qsizetype>(n, 0);
    const qsizetype have = size();
    if (n == have) return;
    Builder b;
    for (qsizetype k = 0; k < n; ++k)
        b.add(value(k));
    *this = b.take();
}

} // namespace lists
