#pragma once

// The kaloimpresora command: reprint, summarise and view spool files.

#include <QStringList>

namespace kalo::herramienta {

// Exit codes, as --help lists them.
namespace salida {
inline constexpr int kBien = 0;
inline constexpr int kUso = 1;            // unknown order or option, bad page range
inline constexpr int kArchivo = 2;        // missing, unreadable, not a spool file or script
inline constexpr int kMalFormado = 3;     // --estricto found a malformed line or failing command
inline constexpr int kDestino = 4;        // unknown printer, output that could not be written
inline constexpr int kSinPaginas = 5;     // the selection holds no page
}  // namespace salida

// argumentos without the program name.
int Ejecuta(const QStringList& argumentos);

}  // namespace kalo::herramienta
