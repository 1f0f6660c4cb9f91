#include "documents/Form2.h"

namespace documents {

Form2::Form2(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 2, parent) {}

void Form2::switchDocument(int, int) {}

} // namespace documents
