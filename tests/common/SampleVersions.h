#pragma once
// Versions of the sample project for the comparison tests: the shipped project read whole, its
// records changed in memory and written back as a project file.
#include "common/TestSupport.h"
#include "persist/ProjectFile.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"
#include "platform/TextFile.h"

#include <gtest/gtest.h>

namespace testing_support {

inline persist::ProjectFile readSample() {
    persist::ProjectFile project;
    QString error;
    EXPECT_TRUE(
        persist::ReadProjectFile(dataDir() + QStringLiteral("Esimerkkisilta.sl"), false, project, &error))
        << error.toStdString();
    return project;
}

inline void writeProject(persist::ProjectFile project, const QString& path) {
    project.members[0].data = persist::WriteProjectText(project.content, false);
    ASSERT_TRUE(platform::writeFileAtomically(path, persist::PackContainer(project.members)));
}

// The first row of a list record whose cell in `column` (1-based) is `text`; null when none is.
inline lists::RowCells* recordRow(persist::ProjectFile& project, int window, int list, int column,
                                  const QString& text) {
    for (lists::RowCells& row : project.content.windows[window].lists[list].rows)
        if (row.value(column - 1) == text) return &row;
    ADD_FAILURE() << "no row " << text.toStdString();
    return nullptr;
}

} // namespace testing_support
