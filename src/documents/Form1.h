#pragma once
// The bridge's basic data window.
#include "documents/ProjectWindow.h"

namespace documents {

class Form1 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form1(DocumentHost& host, QWidget* parent = nullptr);
};

} // namespace documents
