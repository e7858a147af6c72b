// The parameter dialogs, as members of Impresora.

#include "dialogs/dialogos.h"
#include "kaloimpresora/impresora.h"

namespace kalo {

void Impresora::RangoDeFechas(const QString& cTitulo, const std::shared_ptr<Objeto>& Ambiente, bool SoloFechas) {
    dialogos::RangoDeFechas(*this, cTitulo, Ambiente, SoloFechas);
}

void Impresora::FechaDeCorte(const QString& cTitulo, const std::shared_ptr<Objeto>& Ambiente, bool SoloFechas) {
    dialogos::FechaDeCorte(*this, cTitulo, Ambiente, SoloFechas);
}

void Impresora::Rangos(const std::shared_ptr<Objeto>& Ambiente, bool UsarListView) {
    dialogos::Rangos(*this, Ambiente, UsarListView);
}

}  // namespace kalo
