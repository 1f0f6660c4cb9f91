#pragma once
// The per-user settings store: sections and keys under the application name "TAMRIK 2000",
// every value a string. An INI file in the user's configuration folder.
#include <QString>
#include <memory>

class QSettings;

namespace platform {

class SettingsStore {
public:
    explicit SettingsStore(const QString& application = QStringLiteral("TAMRIK 2000"));
    ~SettingsStore();

    QString get(const QString& section, const QString& key, const QString& defaultValue = QString()) const;
    void save(const QString& section, const QString& key, const QString& value);
    // Erases every section and key of the application.
    void deleteAll();
    void sync();
    QString fileName() const;

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace platform
