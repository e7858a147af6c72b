#pragma once

// The runtime's printer globals: the Printers collection and the current
// Printer, over the print server's destinations.

#include <QString>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

// A snapshot of the print server's destinations: "Count", and "Item"(index
// from 0, also the default member) giving a printer object per destination
// whose DeviceName is the queue name. An index out of range raises 9.
KALO_EXPORT std::shared_ptr<Objeto> ColeccionDeImpresoras();

// The current printer, process-wide, created on first use: the print
// server's default destination, else its first one, else PDF files in
// CarpetaDeImpresos() under the name "PDF (KaloImpresora)".
KALO_EXPORT std::shared_ptr<Objeto> ImpresoraActual();

// Makes another printer (any object with the printer's members) current;
// nullptr goes back to the default on next use.
KALO_EXPORT void EstableceImpresoraActual(std::shared_ptr<Objeto> impresora);

// Where the embedded PDF printer writes: $KALO_CARPETA_DE_IMPRESOS when set,
// else kaloimpresora/impresos under the user's data folder
// ($XDG_DATA_HOME, by default ~/.local/share).
KALO_EXPORT QString CarpetaDeImpresos();

}  // namespace kalo
