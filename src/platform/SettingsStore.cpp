#include "platform/SettingsStore.h"

#include <QSettings>

namespace platform {

namespace {
// QSettings keeps its own top level in the [General] section of an INI file, and writes a
// group named "General" as [%General]. The program's "General" section is that top level.
QString keyPath(const QString& section, const QString& key) {
    if (section == QLatin1String("General")) return key;
    return section + QLatin1Char('/') + key;
}
} // namespace

SettingsStore::SettingsStore(const QString& application)
    : m_settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, application,
                                             application)) {}

SettingsStore::~SettingsStore() = default;

QString SettingsStore::get(const QString& section, const QString& key, const QString& defaultValue) const {
    const QVariant v = m_settings->value(keyPath(section, key));
    if (!v.isValid()) return defaultValue;
    if (v.typeId() == QMetaType::QStringList) return v.toStringList().join(QLatin1Char(','));
    return v.toString();
}

void SettingsStore::save(const QString& section, const QString& key, const QString& value) {
    m_settings->setValue(keyPath(section, key), value);
}

void SettingsStore::deleteAll() {
    m_settings->clear();
    m_settings->sync();
}

void SettingsStore::sync() {
    m_settings->sync();
}

QString SettingsStore::fileName() const {
    return m_settings->fileName();
}

} // namespace platform
