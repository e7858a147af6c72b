#pragma once

// The connection and recordset objects that hosts ported from the old
// platform open their databases with, under the member names they already
// use, over Qt's SQL drivers (data/enlace.h).
//
// Connection ("KaloImpresora.Conexion", "ADODB.Connection"):
//   ConnectionString (default)   text; see data/cadena_de_conexion.h
//   Open([ConnectionString], [UserID], [Password], [Options])
//                                empty arguments keep the object's settings;
//                                Options is accepted and ignored
//   Close, State (0 closed, 1 open)
//   Execute(CommandText, [RecordsAffected], [Options]) → Recordset
// Recordset: Fields (default; Fields(i) is Fields.Item(i)), EOF, BOF,
//   MoveNext, MoveFirst (runs the statement again), RecordCount (-1 when
//   the driver cannot tell), Close, State, Source.
// Fields: Item(index or name, default), Count. Field: Value (default),
//   Name, Type (data/tipos_de_columna.h). A field follows its recordset's
//   current row, as the host expects of one it keeps.
// Recordsets are forward-only and read-only.

#include <QString>
#include <memory>
#include <vector>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

class Cursor;
class Enlace;
class Recordset;

class Conexion : public ConTabla<Conexion> {
public:
    static const TablaDeMiembros& Tabla();

    const QString& ConnectionString() const { return cadena_; }
    // 3705 while open.
    void ConnectionString(const QString& cadena);
    // 3705 when already open; a refusal leaves it closed and usable.
    void Open(const QString& cadena = {}, const QString& usuario = {}, const QString& contrasena = {});
    // 3704 when closed. Closes its recordsets too.
    void Close();
    int32_t State() const;
    // 3704 when closed; the database's rejection as kErrorEnLaInstruccion.
    // A statement without rows gives a closed recordset.
    std::shared_ptr<Recordset> Execute(const QString& sql, int32_t* filasAfectadas = nullptr);

private:
    QString cadena_;
    std::shared_ptr<Enlace> enlace_;
};

class Campo;
class Campos;

class Recordset : public ConTabla<Recordset> {
public:
    explicit Recordset(std::shared_ptr<Cursor> cursor);
    static const TablaDeMiembros& Tabla();

    bool Eof() const;
    bool Bof() const;
    void MoveNext();
    void MoveFirst();
    void Close();
    int32_t State() const;
    int32_t RecordCount() const;
    const QString& Source() const;
    std::shared_ptr<Campos> Fields() const;
    // By position from 0 or by name (case-insensitive); 3265 when none.
    std::shared_ptr<Campo> Field(const Variant& indice) const;
    // The current row's value of the column at a position (in range).
    Variant Valor(int columna) const;

private:
    std::shared_ptr<Cursor> cursor_;
    std::shared_ptr<Campos> campos_;
};

class Campos : public ConTabla<Campos> {
public:
    explicit Campos(std::shared_ptr<Cursor> cursor);
    static const TablaDeMiembros& Tabla();

    int32_t Count() const;
    std::shared_ptr<Campo> Item(const Variant& indice) const;

private:
    std::shared_ptr<Cursor> cursor_;
    std::vector<std::shared_ptr<Campo>> campos_;
};

class Campo : public ConTabla<Campo> {
public:
    Campo(std::shared_ptr<Cursor> cursor, int columna) : cursor_(std::move(cursor)), columna_(columna) {}
    static const TablaDeMiembros& Tabla();

    Variant Value() const;
    QString Name() const;
    int32_t Type() const;

private:
    std::shared_ptr<Cursor> cursor_;
    int columna_;
};

}  // namespace kalo
