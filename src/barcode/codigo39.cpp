// Code 39 on the document's current target: a clsBarCode39 draws it in twips.

#include "barcode/codigo39.h"
#include "runtime/unidades.h"

#include "barcode/cls_barcode39.h"
#include "kaloimpresora/mensajes.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

// An omitted optional argument takes its declared default.
const Variant& ODefecto(const Variant& v, const Variant& defecto) { return v.esFalta() ? defecto : v; }

const Variant kFalso(false);
const Variant kSinTexto{QString()};

}  // namespace

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
    const std::shared_ptr<Objeto> destino = Activo();
    if (!destino) Lanza(err::kObjetoNoEstablecido);
    destino->Asigna(u"ScaleMode"_s, escala::kTwips);
    clsBar.Draw(destino);
    destino->Asigna(u"ScaleMode"_s, escala::kPulgadas);
}

}  // namespace modulo4

}  // namespace kalo
