// The list operations that reach the system clipboard. They are apart from the rest of the
// editing because the clipboard belongs to the GUI library, which the command program does
// not load.
#include "lists/ListEditing.h"
#include "lists/ListProcedures.h"

#include <QClipboard>
#include <QGuiApplication>

namespace lists {

namespace {

// The clipboard exists only with a GUI application (the benchmarks run without one).
QClipboard* clipboard() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) ? QGuiApplication::clipboard()
                                                                        : nullptr;
}

QString clipboardText() {
    QClipboard* c = clipboard();
    return c ? c->text() : QString();
}

void setClipboardText(const QString& text) {
    if (QClipboard* c = clipboard()) {
        c->clear();
        c->setText(text);
    }
}

} // namespace

bool ListViewEditEnabled(const ListModel& list, int actionCode, const EditContext& ctx, int editRow) {
    if (actionCode != action::Paste || list.tag() == kind::NoEdit)
        return ListViewEditEnabled(list, actionCode, ctx, editRow, QString());
    return ListViewEditEnabled(list, actionCode, ctx, editRow, clipboardText());
}

bool ListViewCutCopyDelSelection(ListModel& list, int operation, const EditContext& ctx) {
    int code = 0;
    switch (operation) {
        case 0:
            code = action::Cut;
            break;
        case 1:
            code = action::Copy;
            break;
        case 3:
            code = action::DeleteSelection;
            break;
        default:
            return false;
    }
    if (!ListViewEditEnabled(list, code, ctx)) return false;
    const std::vector<int> selected = list.selectedRows();
    if (operation != 3) setClipboardText(ClipTextOfRows(list, selected));
    if (operation == 1 || selected.empty()) return false;

    bool changed = false;
    for (int c = 1; c <= list.lastDataCol(); ++c) {
        bool any = false;
        for (int r : selected)
            any = any || !list.cell(r, c).isEmpty();
        if (!any) continue;
        changed = true;
        list.updateColumn(c, [&](int r, QStringView) -> std::optional<QString> {
            if (list.isSelected(r)) return QString();
            return std::nullopt;
        });
    }
    return changed;
}

bool PasteSelection(ListModel& list, const EditContext& ctx) {
    return PasteText(list, clipboardText(), ctx);
}

} // namespace lists
