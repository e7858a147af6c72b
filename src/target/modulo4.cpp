#include "target/modulo4.h"
#include "runtime/unidades.h"
#include "runtime/ignora.h"

#include "target/impresora_comun.h"
#include "target/impresoras.h"
#include "target/miembros_lienzo.h"

namespace kalo::modulo4 {

using namespace Qt::StringLiterals;

namespace {

// Member calls on a target that may be missing: a missing one is the
// runtime's "object not set".
Objeto& Destino(const std::shared_ptr<Objeto>& o) {
    if (!o) Lanza(err::kObjetoNoEstablecido);
    return *o;
}

Variant Lee(const std::shared_ptr<Objeto>& o, const QString& propiedad) { return Destino(o).Lee(propiedad); }
void Asigna(const std::shared_ptr<Objeto>& o, const QString& propiedad, Variant valor) {
    Destino(o).Asigna(propiedad, std::move(valor));
}

// A property of the open document's target: the printer is given the value
// converted to its own property's type, the preview the value as it comes.
// Each value is worked out only for the target that takes it.
template <class ParaImpresora, class ParaVista>
void Pon(const QString& propiedad, ParaImpresora paraImpresora, ParaVista paraVista,
         const QString& propiedadDeVista = {}) {
    if (UsaImpresora())
        Asigna(ImpresoraActual(), propiedad, Variant(paraImpresora()));
    else
        Asigna(Estado().objDestino, propiedadDeVista.isEmpty() ? propiedad : propiedadDeVista, paraVista());
}

}  // namespace

// Null or empty counts as false; so does anything that does not convert.
bool UsaImpresora() {
    const Variant& v = Estado().bolUsaImpresora;
    if (v.esVacio() || v.esNulo()) return false;
    try {
        return CBool(v);
    } catch (const ErrorDeAutomatizacion&) {
        return false;
    }
}

// The preview target when printing to it, the printer otherwise.
std::shared_ptr<Objeto> Activo() { return UsaImpresora() ? ImpresoraActual() : Estado().objDestino; }

EstadoDelDocumento& Estado() {
    thread_local EstadoDelDocumento estado;
    return estado;
}

void IniciaDestino(const std::shared_ptr<Objeto>& destino, const Variant& usaImpresora, const Variant& ancho,
                   const Variant& alto) {
    EstadoDelDocumento& e = Estado();
    e.bolUsaImpresora = usaImpresora;
    e.nAnchoForma = ancho;
    e.nAltoForma = alto;

    // The printer's offsets are taken whatever the mode; preview never uses them.
    const auto impresora = ImpresoraActual();
    Variant guardado;
    Ignora([&] { guardado = Lee(impresora, u"ScaleMode"_s); });
    Ignora([&] { Asigna(impresora, u"ScaleMode"_s, escala::kPulgadas); });
    Ignora([&] {
        e.nDesplazaX = (e.nAnchoForma - Variant(CSng(Lee(impresora, u"ScaleWidth"_s)))) / Variant(int16_t{2});
    });
    Ignora([&] {
        e.nDesplazaY = (e.nAltoForma - Variant(CSng(Lee(impresora, u"ScaleHeight"_s)))) / Variant(int16_t{2});
    });
    Ignora([&] { Asigna(impresora, u"ScaleMode"_s, guardado); });

    if (UsaImpresora()) {
        Ignora([&] { e.nScaleModeGuardado = Lee(impresora, u"ScaleMode"_s); });
        Ignora([&] { Asigna(impresora, u"ScaleMode"_s, escala::kPulgadas); });
        // Opens the job now, so that even an empty document gives a page.
        Ignora([&] { Destino(impresora).Llama(u"Print"_s, {u""_s}); });
        return;
    }

    e.objDestino = destino;
    const auto& d = e.objDestino;
    Ignora([&] { e.nScaleModeGuardado = Lee(d, u"ScaleMode"_s); });
    Ignora([&] { Asigna(d, u"ScaleMode"_s, escala::kPulgadas); });
    Variant rH, rW;
    Ignora([&] { rH = Lee(d, u"ScaleHeight"_s) / e.nAltoForma; });
    Ignora([&] { rW = Lee(d, u"ScaleWidth"_s) / e.nAnchoForma; });
    // Fit the target to the page's proportions, keeping its longer side.
    const bool masAncho = [&] {
        try {
            return Compara(rH, rW).value_or(1) < 0;
        } catch (...) {
            return false;
        }
    }();
    e.nEscala = masAncho ? rH : rW;
    Variant escalaDelContenedor;
    std::shared_ptr<Objeto> contenedor;
    Ignora([&] { contenedor = Lee(d, u"Parent"_s).objeto(); });
    Ignora([&] { escalaDelContenedor = Lee(contenedor, u"ScaleMode"_s); });
    Ignora([&] { Asigna(contenedor, u"ScaleMode"_s, escala::kPulgadas); });
    if (masAncho)
        Ignora([&] { Asigna(d, u"Width"_s, e.nEscala * e.nAnchoForma); });
    else
        Ignora([&] { Asigna(d, u"Height"_s, e.nEscala * e.nAltoForma); });
    Ignora([&] { Asigna(contenedor, u"ScaleMode"_s, escalaDelContenedor); });

    Ignora([&] { Destino(d).Llama(u"Scale"_s, {0, 0, e.nAnchoForma, e.nAltoForma}); });
    Ignora([&] { Asigna(d, u"FontName"_s, Lee(impresora, u"FontName"_s)); });
    Ignora([&] { Asigna(d, u"FontSize"_s, Lee(impresora, u"FontSize"_s) * e.nEscala); });
    Ignora([&] { Asigna(d, u"ForeColor"_s, Lee(impresora, u"ForeColor"_s)); });
    Ignora([&] { Destino(d).Llama(u"Cls"_s); });
}

namespace {

// The component's own printer when the document prints to it; it is then
// reached directly (see ImpresoraActualPropia), any other target by name.
std::shared_ptr<ImpresoraComun> Propia() { return UsaImpresora() ? ImpresoraActualPropia() : nullptr; }

void XEn(ImpresoraComun& p, const Variant& x) { p.lienzo().CurrentX(CSng(x - Estado().nDesplazaX)); }
void YEn(ImpresoraComun& p, const Variant& y) { p.lienzo().CurrentY(CSng(y - Estado().nDesplazaY)); }
void TextoEn(ImpresoraComun& p, const Variant& texto) { p.Print(miembros_lienzo::TextoAImprimir(texto)); }

}  // namespace

void PosicionaX(const Variant& x) {
    Ignora([&] {
        if (auto propia = Propia()) return XEn(*propia, x);
        Pon(u"CurrentX"_s, [&] { return CSng(x - Estado().nDesplazaX); }, [&] { return x; });
    });
}

void PosicionaY(const Variant& y) {
    Ignora([&] {
        if (auto propia = Propia()) return YEn(*propia, y);
        Pon(u"CurrentY"_s, [&] { return CSng(y - Estado().nDesplazaY); }, [&] { return y; });
    });
}

void AsignaFuente(const Variant& nombre) {
    Ignora([&] { Pon(u"FontName"_s, [&] { return CStr(nombre); }, [&] { return nombre; }); });
}

void AsignaTamano(const Variant& tamano) {
    Ignora([&] { Pon(u"FontSize"_s, [&] { return CSng(tamano); }, [&] { return tamano * Estado().nEscala; }); });
}

void ImprimeTexto(const Variant& texto) {
    Ignora([&] {
        if (auto propia = Propia()) return TextoEn(*propia, texto);
        Destino(Activo()).Llama(u"Print"_s, {texto});
    });
}

void ImprimeEn(const Variant& x, const Variant& y, const Variant& texto) {
    // One look at the current printer for the three steps: none of them can
    // change which printer is current.
    std::shared_ptr<ImpresoraComun> propia;
    Ignora([&] { propia = Propia(); });
    if (!propia) {
        PosicionaX(x);
        PosicionaY(y);
        ImprimeTexto(texto);
        return;
    }
    Ignora([&] { XEn(*propia, x); });
    Ignora([&] { YEn(*propia, y); });
    Ignora([&] { TextoEn(*propia, texto); });
}

void AvanzaPagina() {
    Ignora([&] {
        if (UsaImpresora())
            Destino(ImpresoraActual()).Llama(u"NewPage"_s);
        else
            Destino(Estado().objDestino).Llama(u"Cls"_s);
    });
}

void TerminaDestino() {
    if (UsaImpresora()) {
        Ignora([&] { Destino(ImpresoraActual()).Llama(u"EndDoc"_s); });
        Ignora([&] { Asigna(ImpresoraActual(), u"ScaleMode"_s, CInt(Estado().nScaleModeGuardado)); });
    } else {
        Ignora([&] { Asigna(Estado().objDestino, u"ScaleMode"_s, Estado().nScaleModeGuardado); });
    }
}

void AsignaNegrita(const Variant& bandera) {
    Ignora([&] { Pon(u"FontBold"_s, [&] { return CBool(bandera); }, [&] { return bandera; }); });
}

void AsignaCursiva(const Variant& bandera) {
    // Unlike the other font routines, a failing target reaches the host.
    Pon(u"FontItalic"_s, [&] { return CBool(bandera); }, [&] { return bandera; }, u"FontITalic"_s);
}

void AsignaCopias(const Variant& copias) {
    Ignora([&] { Asigna(ImpresoraActual(), u"Copies"_s, CInt(copias)); });
}

void AsignaTransparencia(const Variant& bandera) {
    if (UsaImpresora()) {
        const auto impresora = ImpresoraActual();
        Asigna(impresora, u"FontTransparent"_s, CBool(bandera));
        // Stands in for setting the device context's background mode.
        const bool transparente = !bandera.esNulo() && CBool(bandera);
        Asigna(impresora, u"ModoDeFondo"_s, Variant(int16_t(transparente ? 1 : 2)));
    } else {
        Asigna(Estado().objDestino, u"FontTransparent"_s, bandera);
    }
}

void AsignaColor(const Variant& color) {
    Ignora([&] { Pon(u"ForeColor"_s, [&] { return CLng(color); }, [&] { return color; }); });
}

namespace {

constexpr int16_t kLinea = 4;        // first point given
constexpr int16_t kCaja = 20;        // first point, outline rectangle
constexpr int16_t kCajaLlena = 38;   // first point, colour given, filled rectangle

Variant EnImpresoraX(const Variant& x) { return CSng(x - Estado().nDesplazaX); }
Variant EnImpresoraY(const Variant& y) { return CSng(y - Estado().nDesplazaY); }

void Rectangulo(int16_t banderas, const Variant& izquierda, const Variant& arriba, const Variant& ancho,
                const Variant& alto, const Variant& colorImpresora, const Variant& colorVista) {
    Ignora([&] {
        // Added as variants: two texts join, as they always have.
        const Variant derecha = izquierda + ancho;
        const Variant abajo = arriba + alto;
        if (UsaImpresora())
            Destino(ImpresoraActual())
                .Llama(u"Line"_s, {banderas, EnImpresoraX(izquierda), EnImpresoraY(arriba), EnImpresoraX(derecha),
                                   EnImpresoraY(abajo), colorImpresora});
        else
            Destino(Estado().objDestino).Llama(u"Line"_s, {banderas, izquierda, arriba, derecha, abajo, colorVista});
    });
}

}  // namespace

void TrazaLinea(const Variant& x1, const Variant& y1, const Variant& x2, const Variant& y2) {
    Ignora([&] {
        if (UsaImpresora())
            Destino(ImpresoraActual())
                .Llama(u"Line"_s, {kLinea, EnImpresoraX(x1), EnImpresoraY(y1), EnImpresoraX(x2), EnImpresoraY(y2),
                                   int32_t{0}});
        else
            Destino(Estado().objDestino).Llama(u"Line"_s, {kLinea, x1, y1, x2, y2, int16_t{0}});
    });
}

void TrazaCaja(const Variant& izquierda, const Variant& arriba, const Variant& ancho, const Variant& alto) {
    Rectangulo(kCaja, izquierda, arriba, ancho, alto, int32_t{0}, int16_t{0});
}

void TrazaCajaLlena(const Variant& izquierda, const Variant& arriba, const Variant& ancho, const Variant& alto,
                    const Variant& color) {
    Variant colorImpresora;
    Ignora([&] { colorImpresora = CLng(color); });
    Rectangulo(kCajaLlena, izquierda, arriba, ancho, alto, colorImpresora, color);
}

void TrazaCirculo(const Variant& x, const Variant& y, const Variant& radio) {
    const Variant cero(int16_t{0});
    if (UsaImpresora())
        Destino(ImpresoraActual())
            .Llama(u"Circle"_s, {cero, EnImpresoraX(x), EnImpresoraY(y), CSng(radio), cero, cero, cero, cero});
    else
        Destino(Estado().objDestino).Llama(u"Circle"_s, {cero, x, y, radio, cero, cero, cero, cero});
}

void PintaImagen(const Variant& imagen, const Variant& izquierda, const Variant& arriba, const Variant& ancho,
                 const Variant& alto) {
    Ignora([&] {
        // Pictures keep the printer's own coordinates: no page offsets.
        if (UsaImpresora())
            Destino(ImpresoraActual())
                .Llama(u"PaintPicture"_s, {imagen, CSng(izquierda), CSng(arriba), ancho, alto});
        else
            Destino(Estado().objDestino).Llama(u"PaintPicture"_s, {imagen, izquierda, arriba, ancho, alto});
    });
}

}  // namespace kalo::modulo4
