#include "documents/Form3.h"

namespace documents {

Form3::Form3(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 3, parent) {}

} // namespace documents
