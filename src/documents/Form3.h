#pragma once
// The characteristics card.
#include "documents/ProjectWindow.h"

namespace documents {

class Form3 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form3(DocumentHost& host, QWidget* parent = nullptr);
};

} // namespace documents
