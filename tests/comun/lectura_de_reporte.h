#pragma once

// The report spool file read back with SQLite, independently of the writer.

#include <sqlite3.h>

#include <QString>
#include <QStringList>
#include <gtest/gtest.h>
#include <vector>

namespace kalo::prueba {

// Runs sql on the file read-only and hands each result row to porFila.
template <class F>
void RecorreConsulta(const QString& archivo, const char* sql, F&& porFila) {
    sqlite3* bd = nullptr;
    if (sqlite3_open_v2(archivo.toUtf8().constData(), &bd, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(bd);
        ADD_FAILURE() << "no abre " << archivo.toStdString();
        return;
    }
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v2(bd, sql, -1, &s, nullptr) == SQLITE_OK) {
        while (sqlite3_step(s) == SQLITE_ROW) porFila(s);
    } else {
        ADD_FAILURE() << sqlite3_errmsg(bd);
    }
    sqlite3_finalize(s);
    sqlite3_close(bd);
}

inline QString TextoDeColumna(sqlite3_stmt* s, int c) {
    const auto* t = sqlite3_column_text(s, c);
    return t ? QString::fromUtf8(reinterpret_cast<const char*>(t)) : QStringLiteral("<null>");
}

using Fila = std::vector<QString>;

// Every row of a query, each column as SQLite writes it as text ("<null>" for NULL).
inline std::vector<Fila> Consulta(const QString& archivo, const char* sql) {
    std::vector<Fila> filas;
    RecorreConsulta(archivo, sql, [&](sqlite3_stmt* s) {
        Fila f;
        for (int c = 0; c < sqlite3_column_count(s); ++c) f.push_back(TextoDeColumna(s, c));
        filas.push_back(std::move(f));
    });
    return filas;
}

// The recorded command lines, in order.
inline QStringList Comandos(const QString& archivo) {
    QStringList r;
    RecorreConsulta(archivo, "SELECT source FROM source ORDER BY row",
                    [&](sqlite3_stmt* s) { r << TextoDeColumna(s, 0); });
    return r;
}

}  // namespace kalo::prueba
