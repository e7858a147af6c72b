// Barcodes. Code 39 is drawn bar by bar in twips; the others are painted as
// pictures: the utility object encodes, the target layer stretches the
// picture into the page rectangle, and past recording nothing fails.

#include "core/privado.h"
#include "kaloimpresora/utilerias.h"
#include "barcode/codigo39.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

QString Verdad(bool b) { return b ? u"True"_s : u"False"_s; }

// The part that the picture barcodes' commands share.
QString ComandoDeBarras(const QString& palabra, int16_t altoDeBarra, const QString& barData, const Variant& pLeft,
                        const Variant& pTop, const Variant& pWidth, const Variant& pHeight) {
    return palabra + u' ' + TextoFn(Variant(altoDeBarra)) + u",\""_s + barData + u"\","_s + TextoFn(pLeft) +
           u',' + TextoFn(pTop) + u',' + TextoFn(pWidth) + u',' + TextoFn(pHeight);
}

// Records a picture barcode's command, then paints the utility object's
// picture of the symbol; with no picture the target is asked anyway and its
// failure ignored.
template <class Pide>
void PintaBarras(Impresora& imp, const QString& palabra, const QString& banderas, int16_t altoDeBarra,
                 const QString& barData, const Variant& pLeft, const Variant& pTop, const Variant& pWidth,
                 const Variant& pHeight, Pide&& pide) {
    RegistraComando(imp, ComandoDeBarras(palabra, altoDeBarra, barData, pLeft, pTop, pWidth, pHeight) + banderas);
    Variant imagen = Variant::Nada();
    try {
        QString datos = barData;
        imagen = Variant(pide(UtileriasCompartidas(), altoDeBarra, datos));
    } catch (...) {
    }
    modulo4::PintaImagen(imagen, pLeft, pTop, pWidth, pHeight);
}

// An omitted optional argument takes its declared default.
const Variant& ODefecto(const Variant& v, const Variant& defecto) { return v.esFalta() ? defecto : v; }

const Variant kFalso(false);
const Variant kSinTexto{QString()};

// "True" or "False" for the record; Null is false here.
QString TextoDeBandera(const Variant& v) { return !v.esNulo() && CBool(v) ? u"True"_s : u"False"_s; }

}  // namespace

void Impresora::Bar128(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                       const Variant& pWidth, const Variant& pHeight, bool incluyeHR) {
    PintaBarras(*this, u"Bar128"_s, u',' + Verdad(incluyeHR), altoDeBarra, barData, pLeft, pTop, pWidth, pHeight,
                [&](Utilerias& u, int16_t& alto, QString& datos) { return u.ImagenBar128(alto, datos, incluyeHR); });
}

void Impresora::Bar3de9(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                        const Variant& pWidth, const Variant& pHeight, bool checkSum, bool incluyeHR) {
    PintaBarras(*this, u"Bar3de9"_s, u',' + Verdad(checkSum) + u',' + Verdad(incluyeHR), altoDeBarra, barData, pLeft,
                pTop, pWidth, pHeight, [&](Utilerias& u, int16_t& alto, QString& datos) {
                    return u.ImagenBar3de9(alto, datos, checkSum, incluyeHR);
                });
}

void Impresora::BarEAN13(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                         const Variant& pWidth, const Variant& pHeight, bool incluyeHR) {
    PintaBarras(*this, u"BarEAN13"_s, u',' + Verdad(incluyeHR), altoDeBarra, barData, pLeft, pTop, pWidth, pHeight,
                [&](Utilerias& u, int16_t& alto, QString& datos) { return u.ImagenBarEAN13(alto, datos, incluyeHR); });
}

void Impresora::BarEAN8(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                        const Variant& pWidth, const Variant& pHeight, bool incluyeHR) {
    PintaBarras(*this, u"BarEAN8"_s, u',' + Verdad(incluyeHR), altoDeBarra, barData, pLeft, pTop, pWidth, pHeight,
                [&](Utilerias& u, int16_t& alto, QString& datos) { return u.ImagenBarEAN8(alto, datos, incluyeHR); });
}

void Impresora::Codigo39(const Variant& x, const Variant& y, const Variant& xNarrow, const Variant& yHeight,
                         const Variant& strMensaje, const Variant& bolBox, const Variant& CheckDigit,
                         const Variant& strData1, const Variant& strData2, const Variant& strData3) {
    const QString caja = TextoDeBandera(ODefecto(bolBox, kFalso));
    const QString verificador = TextoDeBandera(ODefecto(CheckDigit, kFalso));

    Utilerias& util = UtileriasCompartidas();
    auto citado = [&](const Variant& v) {
        QString texto = util.TextoDeValor(v);
        Cambia(u"''"_s, u"\""_s, texto);
        return u'"' + texto + u'"';
    };
    const QString mensaje = citado(strMensaje);
    const QString dato1 = citado(ODefecto(strData1, kSinTexto));
    const QString dato2 = citado(ODefecto(strData2, kSinTexto));

    // strData3 is drawn but never was part of the record.
    RegistraComando(*this, u"Codigo39 "_s + TextoFn(x) + u',' + TextoFn(y) + u',' + TextoFn(xNarrow) + u',' +
                    TextoFn(yHeight) + u',' + mensaje + u',' + caja + u',' + verificador + u',' + dato1 + u',' +
                    dato2);
    modulo4::DibujaCodigo39(x, y, xNarrow, yHeight, strMensaje, bolBox, CheckDigit, strData1, strData2, strData3);
}

}  // namespace kalo
