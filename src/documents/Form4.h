#pragma once
// The demolition-charge chamber card.
#include "documents/ProjectWindow.h"

namespace documents {

class Form4 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form4(DocumentHost& host, QWidget* parent = nullptr);
};

} // namespace documents
