#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// Reads the values of a settings file. \a content is its content in UTF-8. The keys of the result
/// are the group and the name, for example "24.0/Locale".
///
/// The file format is that of QSettings: groups, quotation marks, escapes, comments and continued
/// lines have the same meaning. There are three differences:
/// - Each value is one text; a comma has no special meaning.
/// - A value of another type, such as "@Size(1 2)", is not converted: the result is its text in the
///   file.
/// - The names of groups and values are read as UTF-8. QSettings always reads them as Latin-1.
QMap<QString, QString> settingsTexts(const QByteArray &content);

/// Returns \a content with the value \a name of the group \a group set to \a text. \a group must
/// not be empty. All other bytes are unchanged. The value is written in ASCII with the escapes of
/// QSettings, so that programs read the same text with every codec.
QByteArray withSettingsText(const QByteArray &content, const QString &group, const QString &name,
                            const QString &text);

} // namespace Vorn::Util::Formats
