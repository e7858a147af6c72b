// Text output and font state: each method records its command, then sets the
// drawing target. Conversions fail before anything is recorded.

#include "core/privado.h"
#include "kaloimpresora/utilerias.h"
#include "runtime/valor_interno.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

// Equal to the runtime's True (-1); Null is not.
bool EsVerdadero(const Variant& v) { return Compara(v, Variant(int16_t{-1})).value_or(1) == 0; }

QString Entrecomillado(const QString& texto) { return u'"' + texto + u'"'; }

}  // namespace

void Impresora::Say(const Variant& y, const Variant& x, const Variant& strMensaje) {
    Utilerias& util = UtileriasCompartidas();
    QString citado = util.TextoDeValor(strMensaje);
    const double fy = CDbl(y);
    const double fx = CDbl(x);
    const QString contenido = util.TextoDeValor(strMensaje);
    const double nrow = interno::Cociente(fy, interno::Cociente(FormaAlto(), nRow));
    const double ncol = interno::Cociente(fx, interno::Cociente(FormaAncho(), nCol));
    QString comando;
    if (Graba(*this)) {
        Cambia(u"''"_s, u"\""_s, citado);
        comando = u"Say "_s + TextoFn(fy) + u',' + TextoFn(fx) + u',' + Entrecomillado(citado);
    }
    RegistraComando(*this, comando, nrow, ncol, contenido);
    modulo4::ImprimeEn(x, y, strMensaje);
}

void Impresora::CurrentY(const Variant& YVal) {
    RegistraComando(*this, u"CurrentY "_s + TextoFn(YVal));
    modulo4::PosicionaY(YVal);
}

void Impresora::CurrentX(const Variant& XVal) {
    RegistraComando(*this, u"CurrentX "_s + TextoFn(XVal));
    modulo4::PosicionaX(XVal);
}

void Impresora::EstableceFuente(const Variant& strFuente, const Variant& Size) {
    const QString nombre = CStr(strFuente);
    const QString comando = u"EstableceFuente "_s + Entrecomillado(nombre) + u',' + TextoFn(Size);
    RegistraComando(*this, comando, 0, 0, {}, nombre, CDbl(Size));
    modulo4::AsignaFuente(strFuente);
    modulo4::AsignaTamano(Size);
}

void Impresora::FontBold(const Variant& Bold) {
    const QString comando = EsVerdadero(Bold) ? u"FontBold True"_s : u"FontBold False"_s;
    RegistraComando(*this, comando, 0, 0, {}, {}, 0, CBool(Bold), false);
    modulo4::AsignaNegrita(Bold);
}

void Impresora::FontITalic(const Variant& Italic) {
    const QString comando = EsVerdadero(Italic) ? u"FontItalic True"_s : u"FontItalic False"_s;
    RegistraComando(*this, comando, 0, 0, {}, {}, 0, false, CBool(Italic));
    modulo4::AsignaCursiva(Italic);
}

void Impresora::FuenteTransparente(const Variant& bolTrans) {
    RegistraComando(*this, u"FuenteTransparente False"_s);
    modulo4::AsignaTransparencia(bolTrans);
}

void Impresora::ColorDeFuente(const Variant& nColor) {
    RegistraComando(*this, u"ColorDeFuente "_s + CStr(nColor));
    modulo4::AsignaColor(nColor);
}

Variant Impresora::Row(const Variant& nRenglon) { return nRenglon * Variant(interno::Cociente(FormaAlto(), nRow)); }

Variant Impresora::Col(const Variant& nColumna) { return nColumna * Variant(interno::Cociente(FormaAncho(), nCol)); }

}  // namespace kalo
