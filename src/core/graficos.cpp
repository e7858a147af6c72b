// Lines, boxes, circles and pictures: recorded, then drawn by the target layer.

#include <span>

#include "core/privado.h"
#include "target/imagen.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

QString TextosFn(std::span<const double> numeros) {
    QString texto;
    for (const double n : numeros) {
        if (!texto.isEmpty()) texto += u',';
        texto += TextoFn(n);
    }
    return texto;
}

}  // namespace

void Impresora::Linea(const Variant& bLeft0, const Variant& bTop0, const Variant& bLeft1, const Variant& bTop1) {
    const double numeros[] = {CDbl(bLeft0), CDbl(bTop0), CDbl(bLeft1), CDbl(bTop1)};
    RegistraComando(*this, Graba(*this) ? u"Linea "_s + TextosFn(numeros) : QString());
    // Deliberately: the next text without its own CurrentX starts at the left edge.
    modulo4::PosicionaX(Variant());
    modulo4::TrazaLinea(bLeft0, bTop0, bLeft1, bTop1);
}

void Impresora::Box(const Variant& bLeft, const Variant& bTop, const Variant& bWidth, const Variant& bHeight) {
    const double numeros[] = {CDbl(bLeft), CDbl(bTop), CDbl(bWidth), CDbl(bHeight)};
    RegistraComando(*this, Graba(*this) ? u"Box "_s + TextosFn(numeros) : QString());
    modulo4::TrazaCaja(bLeft, bTop, bWidth, bHeight);
}

void Impresora::FilledBox(const Variant& bLeft, const Variant& bTop, const Variant& bWidth, const Variant& bHeight,
                          const Variant& Color) {
    const double numeros[] = {CDbl(bLeft), CDbl(bTop), CDbl(bWidth), CDbl(bHeight), CDbl(Color)};
    RegistraComando(*this, Graba(*this) ? u"FilledBox "_s + TextosFn(numeros) : QString());
    modulo4::TrazaCajaLlena(bLeft, bTop, bWidth, bHeight, Color);
}

void Impresora::PCircle(const Variant& bLeft, const Variant& bTop, const Variant& bRadius) {
    const double numeros[] = {CDbl(bLeft), CDbl(bTop), CDbl(bRadius)};
    RegistraComando(*this, Graba(*this) ? u"PCircle "_s + TextosFn(numeros) : QString());
    modulo4::TrazaCirculo(bLeft, bTop, bRadius);
}

void Impresora::Picture(const Variant& picSource, const Variant& pLeft, const Variant& pTop, const Variant& pWidth,
                        const Variant& pHeight) {
    RegistraComando(*this, u"Picture \""_s + CStr(picSource) + u"\","_s + TextoFn(pLeft) + u',' + TextoFn(pTop) + u',' +
                    TextoFn(pWidth) + u',' + TextoFn(pHeight));
    Variant imagen = Variant::Nada();
    try {
        imagen = Variant(CargaImagen(CStr(picSource)));
    } catch (...) {
        // Nothing loaded: the target is asked anyway and its failure ignored.
    }
    modulo4::PintaImagen(imagen, pLeft, pTop, pWidth, pHeight);
}

}  // namespace kalo
