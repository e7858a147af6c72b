#include "kaloimpresora/impresora.h"

namespace kalo {

// Creation sets these in this order; everything else starts zero, empty,
// false or none.
Impresora::Impresora() {
    FormaAlto(11);
    FormaAncho(8.5);
    nCol = 80;
    nRow = 66;
    QString estilo = QStringLiteral("Tiendanova");
    EstiloImpresion(estilo);
}

void Impresora::ControlhWndImpresora(int32_t& /*hwnForm*/) {
    // Deliberately discarded: the form-style routine must always see 0.
    controlhWnd_ = 0;
}

}  // namespace kalo
