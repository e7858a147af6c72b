// Barcodes painted as pictures: the utility object encodes, the target layer
// stretches the picture into the page rectangle. Past recording nothing fails.

#include "kaloimpresora/impresora.h"
#include "kaloimpresora/utilerias.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

QString Verdad(bool b) { return b ? u"True"_s : u"False"_s; }

template <class Pide>
void PintaCodigo(Pide&& pideImagen, const Variant& pLeft, const Variant& pTop, const Variant& pWidth,
                 const Variant& pHeight) {
    Variant imagen = Variant::Nada();
    try {
        imagen = Variant(pideImagen(UtileriasCompartidas()));
    } catch (...) {
        // No picture: the target is asked anyway and its failure ignored.
    }
    modulo4::PintaImagen(imagen, pLeft, pTop, pWidth, pHeight);
}

}  // namespace

QString Impresora::ComandoDeBarras(const QString& palabra, int16_t altoDeBarra, const QString& barData,
                                   const Variant& pLeft, const Variant& pTop, const Variant& pWidth,
                                   const Variant& pHeight) {
    return palabra + u' ' + TextoFn(Variant(altoDeBarra)) + u",\""_s + barData + u"\","_s + TextoFn(pLeft) +
           u',' + TextoFn(pTop) + u',' + TextoFn(pWidth) + u',' + TextoFn(pHeight);
}

void Impresora::Bar128(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                       const Variant& pWidth, const Variant& pHeight, bool incluyeHR) {
    RegistraComando(ComandoDeBarras(u"Bar128"_s, altoDeBarra, barData, pLeft, pTop, pWidth, pHeight) + u',' +
                    Verdad(incluyeHR));
    PintaCodigo([&](Utilerias& u) {
        QString datos = barData;
        return u.ImagenBar128(altoDeBarra, datos, incluyeHR);
    }, pLeft, pTop, pWidth, pHeight);
}

void Impresora::Bar3de9(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                        const Variant& pWidth, const Variant& pHeight, bool checkSum, bool incluyeHR) {
    RegistraComando(ComandoDeBarras(u"Bar3de9"_s, altoDeBarra, barData, pLeft, pTop, pWidth, pHeight) + u',' +
                    Verdad(checkSum) + u',' + Verdad(incluyeHR));
    PintaCodigo([&](Utilerias& u) {
        QString datos = barData;
        return u.ImagenBar3de9(altoDeBarra, datos, checkSum, incluyeHR);
    }, pLeft, pTop, pWidth, pHeight);
}

void Impresora::BarEAN13(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                         const Variant& pWidth, const Variant& pHeight, bool incluyeHR) {
    RegistraComando(ComandoDeBarras(u"BarEAN13"_s, altoDeBarra, barData, pLeft, pTop, pWidth, pHeight) + u',' +
                    Verdad(incluyeHR));
    PintaCodigo([&](Utilerias& u) {
        QString datos = barData;
        return u.ImagenBarEAN13(altoDeBarra, datos, incluyeHR);
    }, pLeft, pTop, pWidth, pHeight);
}

void Impresora::BarEAN8(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                        const Variant& pWidth, const Variant& pHeight, bool incluyeHR) {
    RegistraComando(ComandoDeBarras(u"BarEAN8"_s, altoDeBarra, barData, pLeft, pTop, pWidth, pHeight) + u',' +
                    Verdad(incluyeHR));
    PintaCodigo([&](Utilerias& u) {
        QString datos = barData;
        return u.ImagenBarEAN8(altoDeBarra, datos, incluyeHR);
    }, pLeft, pTop, pWidth, pHeight);
}

}  // namespace kalo
