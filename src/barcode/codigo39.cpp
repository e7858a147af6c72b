// The Codigo39 method: recorded like every drawing command, then drawn by
// clsBarCode39 on the current target in twips.

#include "barcode/codigo39.h"

#include "barcode/cls_barcode39.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/mensajes.h"
#include "kaloimpresora/utilerias.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

constexpr int16_t kTwips = 1;
constexpr int16_t kPulgadas = 5;

// An omitted optional argument takes its declared default.
const Variant& ODefecto(const Variant& v, const Variant& defecto) { return v.esFalta() ? defecto : v; }

const Variant kFalso(false);
const Variant kSinTexto{QString()};

// Null or empty counts as false; so does anything that does not convert.
bool UsaImpresora() {
    const Variant& v = modulo4::Estado().bolUsaImpresora;
    if (v.esVacio() || v.esNulo()) return false;
    try {
        return CBool(v);
    } catch (const ErrorDeAutomatizacion&) {
        return false;
    }
}

// "True" or "False" for the record; Null is false here.
QString TextoDeBandera(const Variant& v) { return !v.esNulo() && CBool(v) ? u"True"_s : u"False"_s; }

}  // namespace

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
    RegistraComando(u"Codigo39 "_s + TextoFn(x) + u',' + TextoFn(y) + u',' + TextoFn(xNarrow) + u',' +
                    TextoFn(yHeight) + u',' + mensaje + u',' + caja + u',' + verificador + u',' + dato1 + u',' +
                    dato2);
    modulo4::DibujaCodigo39(x, y, xNarrow, yHeight, strMensaje, bolBox, CheckDigit, strData1, strData2, strData3);
}

namespace modulo4 {

void DibujaCodigo39(const Variant& x, const Variant& y, const Variant& xNarrow, const Variant& yHeight,
                    const Variant& strMensaje, const Variant& bolBox, const Variant& CheckDigit,
                    const Variant& strData1, const Variant& strData2, const Variant& strData3) {
    clsBarCode39 clsBar;
    clsBar.CurrentX(CLng(x));
    clsBar.CurrentY(CLng(y));
    Moneda angosto = CCur(xNarrow);
    clsBar.NarrowX(angosto);
    int16_t alto = CInt(yHeight);
    clsBar.BarcodeHeight(alto);
    clsBar.ShowBox(CBool(ODefecto(bolBox, kFalso)));
    clsBar.Barcode(CStr(strMensaje));
    clsBar.Data1(CStr(ODefecto(strData1, kSinTexto)));
    clsBar.Data2(CStr(ODefecto(strData2, kSinTexto)));
    clsBar.Data3(CStr(ODefecto(strData3, kSinTexto)));

    if (clsBar.ErrNumber() != 0) {
        MsgBox(u"Error: It contain invalid barcode charater"_s, estilo::kAceptar | estilo::kCritico, u"Error"_s);
        return;
    }

    // Only the number 1 asks for the check character; True (-1) does not.
    if (Compara(ODefecto(CheckDigit, kFalso), Variant(int16_t{1})) == 0)
        clsBar.Barcode(clsBar.Barcode() + clsBar.FindCheckDigit(QString()));

    // The document's unit is inches, so that is what the target is left in,
    // whatever it had before.
    const std::shared_ptr<Objeto> destino = UsaImpresora() ? ImpresoraActual() : Estado().objDestino;
    if (!destino) Lanza(err::kObjetoNoEstablecido);
    destino->Asigna(u"ScaleMode"_s, kTwips);
    clsBar.Draw(destino);
    destino->Asigna(u"ScaleMode"_s, kPulgadas);
}

}  // namespace modulo4

}  // namespace kalo
