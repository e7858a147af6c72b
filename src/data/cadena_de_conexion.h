#pragma once

// Connection strings in the "clave=valor;…" form that hosts ported from the
// old platform already keep, read into what Qt's SQL drivers need.

#include <QString>

namespace kalo {

struct ParametrosDeConexion {
    QString driver = QStringLiteral("QSQLITE");  // a Qt SQL driver
    QString baseDeDatos;                          // for SQLite, the file
    QString servidor;                             // host name, or a folder for a local socket
    int puerto = -1;
    QString usuario;
    QString contrasena;
};

// Keys, case-insensitive: Driver (QSQLITE when absent, QPSQL, QMYSQL,
// QODBC; braces around it are dropped), Database / Data Source / Initial
// Catalog, Server / Host, Port, User ID / UID, Password / PWD. Other keys
// (Provider, Persist Security Info…) are ignored. A value may be quoted with
// ' or " (the quote doubled inside) or enclosed in braces, to hold ";".
// Raises 3001 on an unterminated quote or a port that is not a number.
ParametrosDeConexion LeeCadenaDeConexion(const QString& cadena);

}  // namespace kalo
