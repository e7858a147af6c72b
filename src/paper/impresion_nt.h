#pragma once

// The paper routines behind Impresora's PaperSize, Portrait, LandScape,
// RestauraPapel and EstableceEstiloImpresoraNT: the current printer's sheet
// and orientation, and the named user form ("Tiendanova_" plus a style) that
// is defined on the printer and selected in its driver settings, so that a
// driver that ignores a custom size still prints on the intended sheet.
// Sizes handed to the form routines are read in the printer's current
// ScaleMode.

#include <QString>
#include <cstdint>

#include "paper/cola_de_impresion.h"

namespace kalo::impresion_nt {

inline constexpr int16_t kPapelDeUsuario = 256;

// Errors ignored throughout. A code of 256 sets Width and Height from the
// inch sizes (the printer's ScaleMode is left in inches); any other code goes
// to PaperSize. Then the form takes the sheet as it is.
void AjustaPapel(int16_t codigo, int32_t propietario, double ancho, double alto, const QString& estilo);

// Errors ignored.
void EstableceOrientacion(int16_t orientacion);

// Note the order: height before width. Errors reach the caller.
void AplicaFormaNT(int32_t propietario, int32_t alto, int32_t ancho, const QString& estilo);
// The same with the current printer's sheet as it is now, in whole twips.
void AplicaFormaALaHoja(int32_t propietario, const QString& estilo);

// Defines (or redefines) the form and puts it in the printer's driver
// settings and device context: 2 when done, 0 when the printer cannot be
// opened or the form not defined. An error after the printer was opened
// leaves it open and reaches the caller.
int16_t SeleccionaForma(const QString& nombre, int32_t propietario, int32_t alto, int32_t ancho);

// The form's name, or empty text when the print system refused it.
QString AgregaForma(cola::Manejador impresora, int32_t cx, int32_t cy, const QString& nombre);

}  // namespace kalo::impresion_nt
