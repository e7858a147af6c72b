#pragma once

// The least a spool row can cost: the same schema, journal and sync settings
// as the component's spool file, one prepared INSERT with bound values.

#include <sqlite3.h>

#include <QFile>
#include <QString>

namespace kalo::banco {

inline void BorraReporte(const QString& archivo) {
    for (const char* s : {"", "-wal", "-shm"}) QFile::remove(archivo + QString::fromLatin1(s));
}

class InsertDesnudo {
public:
    explicit InsertDesnudo(const QString& archivo) : archivo_(archivo) {
        BorraReporte(archivo_);
        sqlite3_open(archivo_.toUtf8().constData(), &bd_);
        sqlite3_exec(bd_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr);
        sqlite3_exec(bd_,
                     "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, "
                     "fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )",
                     nullptr, nullptr, nullptr);
        sqlite3_exec(bd_, "CREATE INDEX paginarow ON source( pagina, row )", nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(bd_,
                           "INSERT INTO source( pagina, row, source, nrow, ncol, contenido, fuente, fsize, bold, "
                           "italic ) VALUES ( ?, ?, ?, ?, ?, ?, ?, ?, ?, ? )",
                           -1, &sentencia_, nullptr);
    }
    ~InsertDesnudo() {
        sqlite3_finalize(sentencia_);
        sqlite3_close(bd_);
        BorraReporte(archivo_);
    }
    InsertDesnudo(const InsertDesnudo&) = delete;
    InsertDesnudo& operator=(const InsertDesnudo&) = delete;

    void Inserta(int fila, const char* source, double nrow, double ncol, const char* contenido) {
        sqlite3_bind_int(sentencia_, 1, 1);
        sqlite3_bind_int(sentencia_, 2, fila);
        sqlite3_bind_text(sentencia_, 3, source, -1, SQLITE_STATIC);
        sqlite3_bind_double(sentencia_, 4, nrow);
        sqlite3_bind_double(sentencia_, 5, ncol);
        sqlite3_bind_text(sentencia_, 6, contenido, -1, SQLITE_STATIC);
        sqlite3_bind_text(sentencia_, 7, "", -1, SQLITE_STATIC);
        sqlite3_bind_double(sentencia_, 8, 0);
        sqlite3_bind_int(sentencia_, 9, 0);
        sqlite3_bind_int(sentencia_, 10, 0);
        sqlite3_step(sentencia_);
        sqlite3_reset(sentencia_);
    }

private:
    QString archivo_;
    sqlite3* bd_ = nullptr;
    sqlite3_stmt* sentencia_ = nullptr;
};

}  // namespace kalo::banco
