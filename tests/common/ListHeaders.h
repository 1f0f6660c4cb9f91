#pragma once
// The header rows of the project's two working lists, as the shipped templates have them.
#include "lists/Columns.h"

#include <QStringList>

namespace testing_support {

inline QStringList quantityHeaders() {
    return lists::quantityColumnHeaders();
}

inline QStringList requirementHeaders() {
    return lists::requirementColumnHeaders();
}

} // namespace testing_support
