#pragma once
// The detailed data window: quantity list, requirement list and text documents.
#include "documents/ProjectWindow.h"

class QTextEdit;

namespace documents {

class Form2 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form2(DocumentHost& host, QWidget* parent = nullptr);

    // RichTextBox1[0] is the visible document; [1]..[3] hold the three documents.
    std::vector<QTextEdit*> RichTextBox1;

    // Stores the shown document into holder `oldIndex` + 1 and shows holder `newIndex` + 1.
    void switchDocument(int oldIndex, int newIndex);
};

} // namespace documents
