#pragma once

// The report spool file's layout: where a new file goes, its two tables, and
// the statements that add a command's row and keep the page count.

#include <QString>

#include "spool/conexion.h"

namespace kalo::reporte {

// hhmmssN.rep next to the library's own file, or in a per-user data folder
// when that one cannot be written to.
QString NuevaRuta();

// Creates the tables `source` and `header` in a fresh file.
void CreaTablas(ConexionDeReporte& conexion);

struct Renglon {
    int32_t pagina = 0;
    int32_t row = 0;
    QString source;
    double nrow = 0;
    double ncol = 0;
    QString contenido;
    QString fuente;
    double fsize = 0;
    double bold = 0;  // as the utility object's ValorNumerico gives them
    double italic = 0;
};

// One row of `source`. Numbers are written in the runtime's own text form, so
// a comma locale writes a comma into the value list and the row is lost, as
// it always was.
void Inserta(ConexionDeReporte& conexion, const Renglon& renglon);

// Writes the page count into `header`, adding its only row the first time.
void AnotaPaginas(ConexionDeReporte& conexion, int32_t paginas);

}  // namespace kalo::reporte
