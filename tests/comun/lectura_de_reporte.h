#pragma once

// The report spool file read back with SQLite, independently of the writer.

#include <sqlite3.h>

#include <QString>
#include <QStringList>
#include <gtest/gtest.h>
#include <vector>

namespace kalo::prueba {

using Fila = std::vector<QString>;

// Every row of a query run read-only on the file, each column as SQLite
// writes it as text ("<null>" for NULL).
inline std::vector<Fila> Consulta(const QString& archivo, const char* sql) {
    std::vector<Fila> filas;
    sqlite3* bd = nullptr;
    sqlite3_stmt* s = nullptr;
    if (sqlite3_open_v2(archivo.toUtf8().constData(), &bd, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
        ADD_FAILURE() << "no abre " << archivo.toStdString();
    else if (sqlite3_prepare_v2(bd, sql, -1, &s, nullptr) != SQLITE_OK)
        ADD_FAILURE() << sqlite3_errmsg(bd);
    while (s && sqlite3_step(s) == SQLITE_ROW) {
        Fila f;
        for (int c = 0; c < sqlite3_column_count(s); ++c) {
            const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(s, c));
            f.push_back(t ? QString::fromUtf8(t) : QStringLiteral("<null>"));
        }
        filas.push_back(std::move(f));
    }
    sqlite3_finalize(s);
    sqlite3_close(bd);
    return filas;
}

// The recorded command lines, in order.
inline QStringList Comandos(const QString& archivo) {
    QStringList r;
    for (const Fila& f : Consulta(archivo, "SELECT source FROM source ORDER BY row")) r << f[0];
    return r;
}

}  // namespace kalo::prueba
