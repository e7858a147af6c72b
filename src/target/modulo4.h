#pragma once

// The drawing-target layer: turns the document operations of Impresora into
// member calls, by name, on the current printer or on the preview target, and
// keeps the open document's state (one copy per thread, shared by every
// Impresora of the thread). Failures of the target are swallowed, except in
// AsignaCursiva and AsignaTransparencia, so a document never stops half way.

#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo::modulo4 {

struct EstadoDelDocumento {
    Variant bolUsaImpresora;  // true: printer; false or empty: objDestino
    std::shared_ptr<Objeto> objDestino;
    Variant nScaleModeGuardado;
    Variant nEscala;  // preview inches per page inch
    Variant nDesplazaX;
    Variant nDesplazaY;
    Variant nAnchoForma;
    Variant nAltoForma;
};

// The calling thread's document state.
EstadoDelDocumento& Estado();

// Whether the open document goes to the printer: Null, empty or anything
// that does not convert counts as false.
bool UsaImpresora();
// The printer when printing, else the preview target.
std::shared_ptr<Objeto> Activo();

void IniciaDestino(const std::shared_ptr<Objeto>& destino, const Variant& usaImpresora, const Variant& ancho,
                   const Variant& alto);
void PosicionaX(const Variant& x);
void PosicionaY(const Variant& y);
void AsignaFuente(const Variant& nombre);
void AsignaTamano(const Variant& tamano);
void ImprimeTexto(const Variant& texto);
// PosicionaX, PosicionaY and ImprimeTexto, in that order.
void ImprimeEn(const Variant& x, const Variant& y, const Variant& texto);
void AvanzaPagina();
void TerminaDestino();
void AsignaNegrita(const Variant& bandera);
void AsignaCursiva(const Variant& bandera);
void AsignaCopias(const Variant& copias);
void AsignaTransparencia(const Variant& bandera);
void AsignaColor(const Variant& color);

// Graphics. On the printer coordinates are shifted by the page offsets, except
// for pictures; on the preview they pass through unchanged.
void TrazaLinea(const Variant& x1, const Variant& y1, const Variant& x2, const Variant& y2);
void TrazaCaja(const Variant& izquierda, const Variant& arriba, const Variant& ancho, const Variant& alto);
void TrazaCajaLlena(const Variant& izquierda, const Variant& arriba, const Variant& ancho, const Variant& alto,
                    const Variant& color);
// Unlike the others, a failing target reaches the host.
void TrazaCirculo(const Variant& x, const Variant& y, const Variant& radio);
void PintaImagen(const Variant& imagen, const Variant& izquierda, const Variant& arriba, const Variant& ancho,
                 const Variant& alto);

}  // namespace kalo::modulo4
