#include "kaloimpresora/utilerias.h"

#include <cmath>

#include "kaloimpresora/automatizacion.h"
#include "barcode/imagenes_zint.h"
#include "data/conexion.h"
#include "text/importe_en_letra.h"

namespace kalo {

namespace {

[[noreturn]] void NoDisponible(const char16_t* operacion) {
    const QString nombre = QString::fromUtf16(operacion);
    LanzaNoDisponible(nombre, QStringLiteral("Utilerias.") + nombre);
}

thread_local std::shared_ptr<Utilerias> tUtilerias;

}  // namespace

QString UtileriasPredeterminadas::TextoDeNumero(double numero) {
    if (numero == 0 || !std::isfinite(numero)) return QStringLiteral("0");
    const int exponente = static_cast<int>(std::floor(std::log10(std::fabs(numero))));
    const int decimales = std::clamp(14 - exponente, 0, 330);
    QString texto = QString::number(numero, 'f', decimales);
    if (texto.contains(u'.')) {
        while (texto.endsWith(u'0')) texto.chop(1);
        if (texto.endsWith(u'.')) texto.chop(1);
    }
    return texto == u"-0" ? QStringLiteral("0") : texto;
}

QString UtileriasPredeterminadas::TextoDeValor(const Variant& valor) {
    switch (valor.tipo()) {
    case TipoVariant::Vacio:
    case TipoVariant::Nulo:
    case TipoVariant::Error: return {};
    case TipoVariant::Objeto:
        if (!valor.objeto()) return {};
        [[fallthrough]];
    default: return CStr(valor);
    }
}

bool UtileriasPredeterminadas::EsVacio(const Variant& valor) {
    switch (valor.tipo()) {
    case TipoVariant::Vacio:
    case TipoVariant::Nulo:
    case TipoVariant::Error: return true;
    case TipoVariant::Texto: return valor.texto().trimmed().isEmpty();
    case TipoVariant::Objeto: return !valor.objeto();
    default: return false;
    }
}

double UtileriasPredeterminadas::ValorNumerico(const Variant& valor) {
    if (valor.esNumerico()) return CDbl(valor);
    if (valor.esTexto()) return LeeNumero(valor.texto()).value_or(0);
    return 0;
}

std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBar128(int16_t& altoDeBarra, QString& barData,
                                                               bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::Code128, altoDeBarra, barData, false, incluyeHR);
}
std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBar3de9(int16_t& altoDeBarra, QString& barData,
                                                                bool& checkSum, bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::Code39, altoDeBarra, barData, checkSum, incluyeHR);
}
std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBarEAN13(int16_t& altoDeBarra, QString& barData,
                                                                 bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::EAN13, altoDeBarra, barData, false, incluyeHR);
}
std::shared_ptr<Objeto> UtileriasPredeterminadas::ImagenBarEAN8(int16_t& altoDeBarra, QString& barData,
                                                                bool& incluyeHR) {
    return ImagenDeBarras(Simbologia::EAN8, altoDeBarra, barData, false, incluyeHR);
}
QString UtileriasPredeterminadas::ImporteEnLetra(double& numero, QString& leyenda, bool& decimales,
                                                 QString& leyenda2) {
    return kalo::ImporteEnLetra(numero, leyenda, decimales, leyenda2);
}

int32_t UtileriasPredeterminadas::BuscaTexto(const Variant& busca, const QString& texto) {
    if (busca.esNulo()) return 0;
    const QString aguja = CStr(busca);
    if (aguja.isEmpty()) return 0;
    return static_cast<int32_t>(texto.indexOf(aguja)) + 1;
}

QString UtileriasPredeterminadas::SeparadorDecimal() { return LocalDelUsuario().decimalPoint(); }

std::shared_ptr<Objeto> UtileriasPredeterminadas::AbreConsulta(const QString& sql,
                                                               const std::shared_ptr<Objeto>& conexion, bool) {
    const QString origen = QStringLiteral("Utilerias.AbreConsulta");
    if (!conexion) Lanza(err::kObjetoNoEstablecido, origen);
    if (auto* propia = dynamic_cast<Conexion*>(conexion.get())) return propia->Execute(sql);
    // Another connection object: through its own Execute.
    const Variant resultado = conexion->Llama(QStringLiteral("Execute"), {sql});
    if (!resultado.esObjeto()) Lanza(err::kTiposNoCoinciden, origen);
    return resultado.objeto();
}
double UtileriasPredeterminadas::FechaDePeriodo(const Variant&, const Variant&) { NoDisponible(u"FechaDePeriodo"); }
void UtileriasPredeterminadas::PreparaFormulario(QObject*, const std::shared_ptr<Objeto>&, const QString&) {
    NoDisponible(u"PreparaFormulario");
}
void UtileriasPredeterminadas::CierraFormulario(QObject*, const std::shared_ptr<Objeto>&, const QString&) {
    NoDisponible(u"CierraFormulario");
}
void UtileriasPredeterminadas::EnviaTeclas(const QString&, bool) { NoDisponible(u"EnviaTeclas"); }
QString UtileriasPredeterminadas::TextoDeMensaje(int32_t, const std::shared_ptr<Objeto>&) {
    NoDisponible(u"TextoDeMensaje");
}

Utilerias& UtileriasCompartidas() {
    if (!tUtilerias) tUtilerias = std::make_shared<UtileriasPredeterminadas>();
    return *tUtilerias;
}

void SustituyeUtilerias(std::shared_ptr<Utilerias> utilerias) { tUtilerias = std::move(utilerias); }

}  // namespace kalo
