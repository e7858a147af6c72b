#include "dialogs/dialogos.h"

namespace kalo::dialogos {

void Rangos(Impresora&, const std::shared_ptr<Objeto>&, bool) {
    LanzaNoDisponible(QStringLiteral("Rangos"), QStringLiteral("Impresora.Rangos"));
}

}  // namespace kalo::dialogos
