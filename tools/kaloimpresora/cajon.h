#pragma once

// «kaloimpresora cajon»: opens the cash drawer from a terminal, as the
// component does for a host, and says why it could not.

#include <QString>
#include <QStringList>

namespace kalo::herramienta {

namespace salida_cajon {
inline constexpr int kNoExiste = 10;       // no such device, file folder or queue
inline constexpr int kSinPermiso = 11;     // the user may not write there
inline constexpr int kOcupado = 12;        // another program holds the device
inline constexpr int kTiempoAgotado = 13;  // nobody took the bytes within 2 seconds
inline constexpr int kFallo = 14;          // any other failure of the device or the print server
}  // namespace salida_cajon

// The help's section on the order and its exit codes.
QString AyudaDelCajon();

// argumentos after the order's name.
int Cajon(const QStringList& argumentos);

}  // namespace kalo::herramienta
