#pragma once
// The test files under tests/platform/data/.
#include "common/TestSupport.h"
#include "platform/TextFile.h"

#include <QByteArray>
#include <QString>
#include <gtest/gtest.h>

namespace platform_fixtures {

inline QString fixture(const QString& name) {
    return testing_support::sourceDir() + QStringLiteral("/tests/platform/data/") + name;
}

// The bytes of a file; a file that cannot be read fails the running test.
inline QByteArray bytesOf(const QString& path) {
    QByteArray bytes;
    EXPECT_TRUE(platform::readFileBytes(path, bytes)) << path.toStdString();
    return bytes;
}

inline QByteArray fixtureBytes(const QString& name) {
    return bytesOf(fixture(name));
}

} // namespace platform_fixtures
