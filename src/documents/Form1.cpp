#include "documents/Form1.h"

namespace documents {

Form1::Form1(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 1, parent) {}

} // namespace documents
