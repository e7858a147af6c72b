// Text helpers that the host uses while composing reports. None of them
// touches the drawing target or the spool file.

#include <QChar>

#include "core/privado.h"
#include "kaloimpresora/utilerias.h"
#include "text/aleatorio.h"
#include "text/formato.h"

namespace kalo {

namespace {

// Longest text the helpers build; past it the runtime is out of string space.
constexpr double kLargoMaximo = 1 << 28;

QString Espacios(double cuantos) {
    if (cuantos <= 0) return {};
    if (cuantos > kLargoMaximo) Lanza(err::kEspacioDeCadenaInsuficiente);
    return QString(static_cast<qsizetype>(cuantos), u' ');
}

// Both pads put the spaces first; the sameness is relied upon by hosts.
QString RellenaIzquierda(const Variant& str, const Variant& nVeces) {
    const QString texto = CStr(str);
    return Espacios(RedondeaPar(CDbl(nVeces) - texto.size())) + texto;
}

}  // namespace

QString Impresora::Replicate(const Variant& strChr, const Variant& nVeces) {
    const double veces = RedondeaPar(CDbl(nVeces));
    if (veces <= 0 || strChr.esNulo()) return {};
    const QString pieza = CStr(strChr);
    if (pieza.isEmpty()) return {};
    if (veces * pieza.size() > kLargoMaximo) Lanza(err::kEspacioDeCadenaInsuficiente);
    return pieza.repeated(static_cast<qsizetype>(veces));
}

QString Impresora::PadR(const Variant& str, const Variant& nVeces) { return RellenaIzquierda(str, nVeces); }

QString Impresora::PadL(const Variant& str, const Variant& nVeces) { return RellenaIzquierda(str, nVeces); }

QString Impresora::Block(const QString& cBlock) { return u'"' + cBlock + u'"'; }

QString Impresora::Quote(const QString& cBlock) { return u'\'' + cBlock + u'\''; }

QString Impresora::Inserta(const QString& cInserta, const QString& cBusca, const QString& cTarget) {
    const int32_t p = UtileriasCompartidas().BuscaTexto(Variant(cBusca), cTarget);
    if (p <= 0 || p > cTarget.size()) return cTarget;
    return cTarget.left(p - 1) + cInserta + cTarget.mid(p - 1 + cBusca.size());
}

QString Impresora::Cambia(const QString& cInserta, const QString& cBusca, QString& cTarget) {
    Utilerias& util = UtileriasCompartidas();
    while (util.BuscaTexto(Variant(cBusca), cTarget) >= 1) cTarget = Inserta(cInserta, cBusca, cTarget);
    return cTarget;
}

QString Impresora::Prepara(QString& cString) { return Cambia(QStringLiteral("\""), QStringLiteral("'"), cString); }

QString Impresora::strLinea(const Variant& cString, const Variant& nLinea) {
    const QString texto = CStr(cString);
    int32_t cuenta = 0;
    QString linea;
    for (QChar c : texto) {
        if (c == u'\n') {
            ++cuenta;
            if (nLinea == Variant(cuenta)) break;
        }
        if (nLinea == Variant(cuenta + 1) && c != u'\r' && c != u'\n') linea += c;
    }
    return linea;
}

int32_t Impresora::CuantasLineas(const Variant& cString) {
    const qsizetype n = UtileriasCompartidas().TextoDeValor(cString).size();
    if (n == 0) return 0;
    const QString texto = CStr(cString);
    return static_cast<int32_t>(QStringView(texto).left(n).count(u'\n')) + 1;
}

double Impresora::Fn(const QString& strValue) {
    Utilerias& util = UtileriasCompartidas();
    QString local;
    local.reserve(strValue.size());
    for (QChar c : strValue) {
        if (c == u'.')
            local += util.SeparadorDecimal();
        else
            local += c;
    }
    return CDbl(Variant(local));
}

Variant Impresora::Formato(const Variant& Var, const Variant& strFormat) { return kalo::Formato(Var, strFormat); }

std::shared_ptr<Objeto> Impresora::rst(QString& strSql, std::shared_ptr<Objeto>& Connection) {
    return UtileriasCompartidas().AbreConsulta(strSql, Connection, true);
}

QString Impresora::Letra(const Variant& nNumero, const Variant& Leyenda, const Variant& Decimales,
                         const Variant& strLeyenda2) {
    Utilerias& util = UtileriasCompartidas();
    QString leyenda2 = CStr(strLeyenda2);
    bool decimales = CBool(Decimales);
    QString leyenda = CStr(Leyenda);
    double numero = CDbl(nNumero);
    return util.ImporteEnLetra(numero, leyenda, decimales, leyenda2);
}

double Impresora::Random() { return SiguienteAleatorio(); }

int32_t Impresora::RandomColor() { return ColorAleatorio(); }

}  // namespace kalo
