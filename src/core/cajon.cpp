// The cash drawer: nothing is recorded, the document is not involved, and no
// failure reaches the host, which cannot tell whether the drawer opened.

#include "paper/cajon.h"
#include "runtime/ignora.h"
#include "kaloimpresora/impresora.h"

namespace kalo {

void Impresora::AbrirCajonDeDinero(const Variant& cPuerto, const Variant& cCode) {
    QString puerto;
    try {
        puerto = CStr(cPuerto);
    } catch (...) {
        return;  // nothing to open
    }
    // A code that cannot be written still leaves the port opened, and a
    // plain file truncated.
    QByteArray linea;
    Ignora([&] { linea = cajon::LineaDeCodigo(cCode); });
    Ignora([&] { cajon::Envia(puerto, linea); });
}

}  // namespace kalo
