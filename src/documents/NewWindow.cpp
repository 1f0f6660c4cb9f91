#include "documents/NewWindow.h"

#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/ProjectWindow.h"
#include "lists/ListFiles.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"

#include <QHeaderView>

namespace documents {

namespace {
constexpr int kTwipsPerPixel = 15;
}

void LoadListTemplate(ProjectWindow& window, int i, const QString& fileName) {
    lists::ListModel* list = window.list(i);
    if (!list) return;
    const QFontMetrics metrics = window.ListView1[i]->header()->fontMetrics();
    lists::InitListView(
        *list, window.host().appState().AppPath + fileName, QStringLiteral(";"),
        [metrics](const QString& text) { return metrics.horizontalAdvance(text) * kTwipsPerPixel; });
}

void UpdateComboListFromFile(ProjectWindow& window, int type, const QDate& today) {
    const QString path = lists::comboDataPath(window.host().appState().AppPath, type);
    const lists::ComboData data = lists::readComboData(path, static_cast<int>(window.Combo1.size()), today);
    for (std::size_t i = 0; i < data.entries.size() && i < window.Combo1.size(); ++i) {
        ComboBox* combo = window.Combo1[i];
        if (!combo) continue;
        for (const QString& entry : data.entries[i])
            combo->addUniqueItem(entry);
    }
    if (!data.ok()) platform::MsgBox(data.error);
}

} // namespace documents
