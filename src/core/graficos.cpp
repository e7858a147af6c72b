// Lines, boxes, circles and pictures: recorded, then drawn by the target layer.

#include "core/privado.h"
#include "target/imagen.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

void Impresora::Linea(const Variant& bLeft0, const Variant& bTop0, const Variant& bLeft1, const Variant& bTop1) {
    RegistraComando(*this, u"Linea "_s + TextoFn(bLeft0) + u',' + TextoFn(bTop0) + u',' + TextoFn(bLeft1) + u',' +
                    TextoFn(bTop1));
    // Deliberately: the next text without its own CurrentX starts at the left edge.
    modulo4::PosicionaX(Variant());
    modulo4::TrazaLinea(bLeft0, bTop0, bLeft1, bTop1);
}

void Impresora::Box(const Variant& bLeft, const Variant& bTop, const Variant& bWidth, const Variant& bHeight) {
    RegistraComando(*this, u"Box "_s + TextoFn(bLeft) + u',' + TextoFn(bTop) + u',' + TextoFn(bWidth) + u',' +
                    TextoFn(bHeight));
    modulo4::TrazaCaja(bLeft, bTop, bWidth, bHeight);
}

void Impresora::FilledBox(const Variant& bLeft, const Variant& bTop, const Variant& bWidth, const Variant& bHeight,
                          const Variant& Color) {
    RegistraComando(*this, u"FilledBox "_s + TextoFn(bLeft) + u',' + TextoFn(bTop) + u',' + TextoFn(bWidth) + u',' +
                    TextoFn(bHeight) + u',' + TextoFn(Color));
    modulo4::TrazaCajaLlena(bLeft, bTop, bWidth, bHeight, Color);
}

void Impresora::PCircle(const Variant& bLeft, const Variant& bTop, const Variant& bRadius) {
    RegistraComando(*this, u"PCircle "_s + TextoFn(bLeft) + u',' + TextoFn(bTop) + u',' + TextoFn(bRadius));
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
