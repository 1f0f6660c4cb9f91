#pragma once
// Undo steps over the fields of a window record: a text box, a drop-down or a check box, and
// the project's picture slots. The window holding the fields implements RecordFields; the
// steps set values through it and never see a widget.
#include "lists/EditHistory.h"
#include "platform/Picture.h"

#include <QString>

namespace persist {

// A field of a window by its control array and index: Text1[i], Combo1[i], Check1[i].
struct FieldRef {
    enum class Kind { Text, Combo, Check };
    Kind kind = Kind::Text;
    int index = 0;
    friend bool operator==(const FieldRef&, const FieldRef&) = default;
};

// The fields of a window as the steps reach them.
class RecordFields {
public:
    virtual ~RecordFields() = default;
    // The value of a field (a check box as "0", "1" or "2").
    virtual QString fieldValue(FieldRef field) const = 0;
    // Sets a value without it becoming a step of its own.
    virtual void setFieldValue(FieldRef field, const QString& value) = 0;
    // Whether the program mode has made the field read-only.
    virtual bool fieldLocked(FieldRef field) const = 0;
    // Brings the field into view with the focus, after an undo or redo changed it.
    virtual void revealField(FieldRef field) = 0;
    // Picture slots (the basic data window's Image1[i]).
    virtual platform::Picture picture(int slot) const {
        Q_UNUSED(slot);
        return {};
    }
    virtual void setPicture(int slot, const platform::Picture& picture) {
        Q_UNUSED(slot);
        Q_UNUSED(picture);
    }
    virtual void revealPicture(int slot) { Q_UNUSED(slot); }
};

// A field's value changed. Changes of one field in one merge generation (until the focus
// leaves it) are one step; a field typed back to its old value leaves no step.
class FieldEdit : public lists::UndoStep {
public:
    FieldEdit(RecordFields& fields, FieldRef field, QString before, QString after, int generation,
              const QString& text);

    void apply(bool forward) override;
    bool allowed(int programMode) const override;
    int id() const override;
    bool mergeWith(const QUndoCommand* other) override;

private:
    RecordFields& m_fields;
    FieldRef m_field;
    QString m_before;
    QString m_after;
    int m_generation;
};

// A picture put into, replaced in or cleared from a slot.
class PictureEdit : public lists::UndoStep {
public:
    PictureEdit(RecordFields& fields, int slot, platform::Picture before, platform::Picture after);

    void apply(bool forward) override;

private:
    RecordFields& m_fields;
    int m_slot;
    platform::Picture m_before;
    platform::Picture m_after;
};

// The step texts of field and picture changes: `kenttä "Sillan nimi"` for a field with a
// label, otherwise "kentän muutos".
QString fieldStepText(const QString& label);
QString pictureStepText(const platform::Picture& before, const platform::Picture& after);
inline const QString kComputeFiguresStep = QStringLiteral("tunnuslukujen laskenta");

} // namespace persist
