#pragma once
#include <QString>

namespace hourbook {

/// What a connection text for the server is made of.
struct SqlServerLogin {
  QString server, database;
  bool trusted = true;
  QString user, password;
  bool operator==(const SqlServerLogin&) const = default;
};

/// The provider of the texts that the fields of a login make.
inline const QString sqlServerProvider = QStringLiteral("SQLOLEDB.1");

/// What of a connection text stands in fields, its keys under all their names. Of a text that is none,
/// nothing.
SqlServerLogin loginOf(const QString& text);
/// Can the fields stand for the text? Only of one for MS SQL Server; the empty text is none yet.
bool fieldsShow(const QString& text);
/// Name of the provider; empty of a text without one, or that is no connection text.
QString providerOf(const QString& text);
bool holdsPassword(const QString& text);

/// The text with another login; what else stands in it is kept behind it. It is not touched at all while the
/// login is the same.
QString withLogin(const QString& text, const SqlServerLogin& login);
/// What stands in the text besides the login, as it is written there; empty: nothing.
QString furtherParts(const QString& text);

/// What keeps a text that was typed as a whole from being used; empty: nothing.
QString connectionTextProblem(const QString& text);

}  // namespace hourbook
