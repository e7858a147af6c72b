#pragma once

// What the files of Impresora share and hosts never see.

#include <QString>

#include "kaloimpresora/impresora.h"

namespace kalo {

// Counts the command in nLinea and, while Pantalla and Archivo are both on,
// writes it as one row of the spool file. Never fails but for the counter.
void RegistraComando(Impresora& imp, const QString& source, double nrow = 0, double ncol = 0,
                     const QString& contenido = {}, const QString& fuente = {}, double fsize = 0,
                     bool bold = false, bool italic = false);

// A number as recorded in command texts: Fn("2.5").
QString TextoFn(const Variant& valor);
QString TextoFn(double valor);

// Whether RegistraComando writes rows now. While it does not, commands still
// convert their arguments, in the same order, and skip building the text.
inline bool Graba(const Impresora& imp) { return imp.Pantalla && imp.Archivo; }

}  // namespace kalo
