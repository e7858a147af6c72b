#pragma once

// How the columns of a result become automation values. One table for every
// driver; what differs is only how a column's type is learnt.
//
//   column                                   value                     Field.Type
//   ---------------------------------------  ------------------------  ----------
//   boolean                                  Boolean                   11
//   smallint                                 Integer (16-bit) *        2
//   integer, serial, oid; SQLite INTEGER     Long (32-bit) *           3
//   bigint                                   Long *                    20
//   real (single)                            Single                    4
//   double precision, float                  Double                    5
//   money; numeric/decimal with up to 4      Currency                  6
//     decimals and up to 15 digits before
//     the point
//   other numeric/decimal                    Double                    131
//   date                                     Date                      133
//   time                                     Date (the time alone)     134
//   timestamp, datetime                      Date                      135
//   text, char, varchar…                     String                    202
//   bytea, blob                              String, a byte a char     205
//   NULL in any column                       Null
//
//   * a whole number goes to the narrowest of Integer (16-bit columns only),
//     Long and Double that holds it.
//
// PostgreSQL names its types (the driver gives the type's number). SQLite
// stores values loosely, so its columns go by the type they were declared
// with, as SQLite's own rules read it (DATETIME, DECIMAL(10,2), MONEY…);
// a column without one (an expression) takes the type of its first value.
// Dates kept as text in SQLite are read in ISO form ("2024-03-01",
// "2024-03-01 13:45:10"); a value that does not read as its column's type
// is given as it is stored. Other drivers go by the Qt type they report.

#include <QString>
#include <QVariant>
#include <cstdint>

#include "kaloimpresora/variant.h"

class QSqlField;

namespace kalo {

enum class TipoDeColumna : uint8_t {
    Booleano,
    Entero16,
    Entero32,
    Entero64,
    Sencillo,
    Doble,
    Moneda,
    Decimal,
    Fecha,
    Hora,
    FechaHora,
    Texto,
    Binario,
};

// From the Qt type the driver reports for the field.
TipoDeColumna TipoDeCampo(const QSqlField& campo);
// From PostgreSQL's type number and modifiers, as the driver reports them.
TipoDeColumna TipoDeCampoPostgres(const QSqlField& campo);
// From a declared SQLite type; false when there is no declaration (an
// expression), and the caller goes by the value instead.
bool TipoDeDeclaracionSqlite(QStringView declarado, TipoDeColumna& tipo);

// The column's value as an automation value, by the table above.
Variant ValorDeColumna(const QVariant& valor, TipoDeColumna tipo);

// Field.Type: the number of the column's type in the table above.
int32_t NumeroDeTipo(TipoDeColumna tipo);

}  // namespace kalo
