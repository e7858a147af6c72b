#pragma once

// The parameter dialogs as the Impresora members open them. Each call builds
// a fresh window, shows it modally (a nested event loop, no owner) and returns
// once it is closed; failures before it is shown reach the caller.

#include <QString>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

class Impresora;

namespace dialogos {

// frmParam: writes FechaInicial, FechaFinal, Todos and SoloSeleccionados on
// accept, Cancelado on cancel.
void RangoDeFechas(Impresora& imp, const QString& cTitulo, const std::shared_ptr<Objeto>& ambiente,
                   bool soloFechas);
// frmFechaCorte: the same without FechaFinal.
void FechaDeCorte(Impresora& imp, const QString& cTitulo, const std::shared_ptr<Objeto>& ambiente,
                  bool soloFechas);
// frmPMCombo: answers in a new ParamData on accept, Cancelado on cancel; the
// branch chosen stays in AmbienteSucursal however it closes.
void Rangos(Impresora& imp, const std::shared_ptr<Objeto>& ambiente, bool usarListView);

}  // namespace dialogos
}  // namespace kalo
