#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// The values of a settings file by their keys ("24.0/Locale"), from its content in UTF-8.
///
/// The file has the form that QSettings reads and writes: groups, quotation marks, escapes,
/// comments and continued lines mean the same. Three things differ:
/// - Every value is one text, in which a comma has no meaning.
/// - A value of another type than a text or a byte array is read as the text that stands for it in
///   the file.
/// - Names of groups and values are read as UTF-8. QSettings reads them as Latin-1, whatever its
///   codec.
QMap<QString, QString> settingsTexts(const QByteArray &content);

/// \a content with the value \a name of the group \a group, which is not empty, set to \a text.
/// Every other byte stays as it is. The new value is written in ASCII, with the escapes of
/// QSettings, so that every program reads the same text whatever its codec.
QByteArray withSettingsText(const QByteArray &content, const QString &group, const QString &name,
                            const QString &text);

} // namespace Vorn::Util::Formats
