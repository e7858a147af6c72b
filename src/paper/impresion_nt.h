#pragma once

// The paper routines behind Impresora's PaperSize, Portrait, LandScape,
// RestauraPapel and EstableceEstiloImpresoraNT: the current printer's sheet
// and orientation, and the named user form ("Tiendanova_" plus a style) that
// is defined for the printer on the print server and then selected, so that
// the printer's later jobs come out on that sheet. Sizes handed to the form
// routines are read in the printer's current ScaleMode.

#include <QString>
#include <cstdint>

#include "paper/formas.h"

namespace kalo::impresion_nt {

inline constexpr int16_t kPapelDeUsuario = 256;

// Errors ignored throughout. A code of 256 sets Width and Height from the
// inch sizes (the printer's ScaleMode is left in inches); any other code goes
// to PaperSize. Then the form takes the sheet as it is.
void AjustaPapel(int16_t codigo, int32_t propietario, double ancho, double alto, const QString& estilo);

// Errors ignored.
void EstableceOrientacion(int16_t orientacion);

// Note the order: height before width. Errors reach the caller. The owner
// window is what the host gave; no dialog of the print system is shown.
void AplicaFormaNT(int32_t propietario, int32_t alto, int32_t ancho, const QString& estilo);
// The same with the current printer's sheet as it is now, in whole twips.
void AplicaFormaALaHoja(int32_t propietario, const QString& estilo);

// Defines (or redefines) the form for the current printer's queue and puts
// the printer on its sheet: 2 when done, 0 when the printer has no name or
// the form could not be defined. The sheet follows the form named by the
// first 32 characters of the name only (the width of a driver's form name),
// and only when the device takes a sheet that size. A printer that is not
// a print-server destination (PDF files, images) defines nothing and takes
// the sheet directly. A failing printer member raises.
int16_t SeleccionaForma(const QString& nombre, int32_t propietario, int32_t alto, int32_t ancho);

// The form's name, or empty text when the print server refused it.
QString AgregaForma(formas::Destinos& destinos, const QString& cola, int32_t cx, int32_t cy, const QString& nombre);

}  // namespace kalo::impresion_nt
