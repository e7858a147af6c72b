#include "paper/seleccion.h"

#include "kaloimpresora/impresoras.h"

namespace kalo {

using namespace Qt::StringLiterals;

void SeleccionaImpresora(const QString& nombre) {
    const auto impresoras = ColeccionDeImpresoras();
    const int32_t n = CLng(impresoras->Lee(u"Count"_s));
    for (int32_t i = 0; i < n; ++i) {
        auto impresora = impresoras->Llama(u"Item"_s, {i}).objeto();
        if (impresora && impresora->Lee(u"DeviceName"_s).texto() == nombre) {
            EstableceImpresoraActual(std::move(impresora));
            return;
        }
    }
}

}  // namespace kalo
