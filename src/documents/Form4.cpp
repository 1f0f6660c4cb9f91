#include "documents/Form4.h"

namespace documents {

Form4::Form4(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 4, parent) {}

} // namespace documents
