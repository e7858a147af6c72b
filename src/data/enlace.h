#pragma once

// One open connection of Qt's SQL module, and the results read from it row
// by row as they arrive, never a whole result in memory.
//
// SQLite and the other drivers stream a forward-only query. PostgreSQL's
// driver streams one too, but loses its rows as soon as anything else runs
// on the connection, and a report reads its detail while its header is open;
// so there a query is read through a server-side cursor, in batches. The
// cursor needs a transaction: the first one open begins it and the last one
// closed commits it, and statements run meanwhile go under a savepoint, so a
// failure spoils only themselves. When the host has begun its own
// transaction, cursors live in it and end with it.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <memory>
#include <optional>
#include <vector>

#include "data/cadena_de_conexion.h"
#include "data/tipos_de_columna.h"

namespace kalo {

class Cursor;

// A connection under a Qt connection name of its own, used only from the
// thread that opened it.
class Enlace {
public:
    // Raises 3706 when the driver is not installed, and the database's
    // refusal as kErrorNoEspecificado with the driver's own text.
    static std::shared_ptr<Enlace> Abre(const ParametrosDeConexion& parametros);
    ~Enlace();
    Enlace(const Enlace&) = delete;
    Enlace& operator=(const Enlace&) = delete;

    bool abierto() const { return bd_.isOpen(); }
    // Closes every result still open on it, then the connection.
    void Cierra();

private:
    friend class Cursor;
    Enlace() = default;

    bool Simple(const QString& sql);
    // Inside a transaction block, the host's or ours.
    bool EnTransaccion() const;
    // Runs sql on q; inside a transaction block, under a savepoint.
    bool EjecutaProtegido(QSqlQuery& q, const QString& sql);
    // The name of a server-side cursor declared for sql, or empty when sql
    // cannot be one (not a query, or the server would not declare it).
    QString DeclaraCursor(const QString& sql);
    bool Trae(QSqlQuery& lote, const QString& cursor, int filas);
    void CierraCursor(const QString& cursor);

    QString nombre_;
    QSqlDatabase bd_;
    bool postgres_ = false;
    int cursoresDeServidor_ = 0;
    int ultimoCursor_ = 0;
    bool transaccionPropia_ = false;
    bool soloCursores_ = true;  // nothing but cursors ran in our transaction
    std::vector<std::weak_ptr<Cursor>> cursores_;
};

struct Columna {
    QString nombre;
    TipoDeColumna tipo;
};

// The result of one statement, read forward. A statement without rows gives
// a cursor that is closed from the start.
class Cursor {
public:
    // Runs sql; raises kErrorEnLaInstruccion with the driver's text when the
    // database rejects it, 3704 when the connection is closed.
    static std::shared_ptr<Cursor> Abre(const std::shared_ptr<Enlace>& enlace, const QString& sql);
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    bool abierto() const { return abierto_; }
    bool eof() const { return eof_; }
    bool bof() const { return bof_; }
    const QString& sql() const { return sql_; }
    // -1 for a query.
    int32_t filasAfectadas() const { return filasAfectadas_; }
    // -1 when the driver cannot tell before the end.
    int32_t cuenta() const { return cuenta_; }
    // Also after the end, while open; 3704 once closed.
    const std::vector<Columna>& columnas() const;
    // 3265 out of range.
    const Columna& columna(int i) const;

    // 3021 past the end, 3704 once closed; a failure of the database
    // closes the cursor and raises kErrorEnLaInstruccion.
    void Siguiente();
    // Runs the statement again and stands on its first row.
    void Primero();
    void Cierra();
    // The current row's value of column i; 3021 without one, 3265 out of range.
    Variant Valor(int i) const;

private:
    Cursor(std::shared_ptr<Enlace> enlace, QString sql) : enlace_(std::move(enlace)), sql_(std::move(sql)) {}
    void Ejecuta();
    void LeeColumnas();
    bool Avanza();
    void Libera();
    [[noreturn]] void Falla(const QSqlError& error);

    std::shared_ptr<Enlace> enlace_;
    QString sql_;
    std::optional<QSqlQuery> consulta_;  // the whole result, or the current batch of the server cursor
    QString cursorDeServidor_;
    int lote_ = 0;
    int filasDelLote_ = 0;
    std::vector<Columna> columnas_;
    bool abierto_ = false;
    bool eof_ = true;
    bool bof_ = true;
    int32_t filasAfectadas_ = 0;
    int32_t cuenta_ = -1;
};

}  // namespace kalo
