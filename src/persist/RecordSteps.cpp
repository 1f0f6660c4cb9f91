#include "persist/RecordSteps.h"

namespace persist {

namespace {
// The id that lets the stack offer a field step for merging with the one before it.
constexpr int kFieldEditId = 0x7a11;
} // namespace

FieldEdit::FieldEdit(RecordFields& fields, FieldRef field, QString before, QString after, int generation,
                     const QString& text)
    : lists::UndoStep(text)
    , m_fields(fields)
    , m_field(field)
    , m_before(std::move(before))
    , m_after(std::move(after))
    , m_generation(generation) {}

void FieldEdit::apply(bool forward) {
    m_fields.setFieldValue(m_field, forward ? m_after : m_before);
    m_fields.revealField(m_field);
}

bool FieldEdit::allowed(int) const {
    return !m_fields.fieldLocked(m_field);
}

int FieldEdit::id() const {
    return kFieldEditId;
}

bool FieldEdit::mergeWith(const QUndoCommand* other) {
    const auto* next = dynamic_cast<const FieldEdit*>(other);
    if (!next || &next->m_fields != &m_fields || next->m_field != m_field ||
        next->m_generation != m_generation)
        return false;
    m_after = next->m_after;
    // Typed back to where it started: nothing is left to undo.
    setObsolete(m_after == m_before);
    return true;
}

PictureEdit::PictureEdit(RecordFields& fields, int slot, platform::Picture before, platform::Picture after)
    : lists::UndoStep(pictureStepText(before, after))
    , m_fields(fields)
    , m_slot(slot)
    , m_before(std::move(before))
    , m_after(std::move(after)) {}

void PictureEdit::apply(bool forward) {
    m_fields.setPicture(m_slot, forward ? m_after : m_before);
    m_fields.revealPicture(m_slot);
}

QString fieldStepText(const QString& label) {
    QString shown = label;
    shown.remove(QLatin1Char('&'));
    shown = shown.simplified();
    while (shown.endsWith(QLatin1Char(':')))
        shown.chop(1);
    if (shown.isEmpty()) return QStringLiteral("kentän muutos");
    return QStringLiteral("kenttä \"") + shown + QLatin1Char('"');
}

QString pictureStepText(const platform::Picture& before, const platform::Picture& after) {
    if (before.isNull()) return QStringLiteral("kuvan lisäys");
    if (after.isNull()) return QStringLiteral("kuvan poisto");
    return QStringLiteral("kuvan vaihto");
}

} // namespace persist
