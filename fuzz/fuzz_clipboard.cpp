// Clipboard text pasted into a list: another program's rows, tabs and line ends.
#include "FuzzSupport.h"
#include "lists/ListEditing.h"
#include "lists/ListModel.h"

TAMRIK_FUZZ_START

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QString text = QString::fromUtf8(fuzz::bytes(data, size));
    QString sized = text;
    const lists::ClipDimensions dims = lists::ClipSize(sized);
    lists::ClipCells(sized);
    lists::ParseClipData(sized, dims.rows, dims.columns, dims.columns);

    lists::ListModel list;
    std::vector<lists::Column> columns{{QStringLiteral("LITTERA"), 1000},
                                       {QStringLiteral("TYÖVAIHE"), 1000},
                                       {QStringLiteral("YKSIKKÖ"), 1000},
                                       {QStringLiteral("Rivi"), 0}};
    std::vector<lists::Row> rows(2);
    rows[0].cells =
        QStringList{QStringLiteral("7100"), QStringLiteral("YLEISET"), QString(), QStringLiteral("00001")};
    rows[1].cells =
        QStringList{QString(), QStringLiteral("Muotti"), QStringLiteral("m2"), QStringLiteral("00002")};
    list.reset(std::move(columns), std::move(rows));
    list.setSelected(2, true);
    lists::PasteText(list, text, lists::EditContext{});
    return 0;
}
