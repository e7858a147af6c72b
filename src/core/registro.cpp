// The recorder every drawing and lifecycle command calls, and the creation of
// the spool file it writes to.

#include "core/privado.h"
#include "kaloimpresora/utilerias.h"
#include "spool/reporte.h"

namespace kalo {

using namespace Qt::StringLiterals;

void Impresora::CreaBaseDeDatos() {
    auto conexion = std::make_shared<ConexionDeReporte>();
    sq = conexion;
    DB = reporte::NuevaRuta();
    conexion->Abre(DB);
    reporte::CreaTablas(*conexion);
}

void RegistraComando(Impresora& imp, const QString& source, double nrow, double ncol, const QString& contenido,
                     const QString& fuente, double fsize, bool bold, bool italic) {
    if (imp.nLinea == INT32_MAX) Lanza(err::kDesbordamiento, u"Impresora.RegistraComando"_s);
    ++imp.nLinea;
    if (!Graba(imp)) return;
    try {
        Utilerias& util = UtileriasCompartidas();
        if (util.EsVacio(Variant(imp.DB))) imp.CreaBaseDeDatos();
        auto conexion = std::dynamic_pointer_cast<ConexionDeReporte>(imp.sq);
        if (!conexion) {
            conexion = std::make_shared<ConexionDeReporte>();
            imp.sq = conexion;
        }
        // The statements must reach the file named by DB, even after the host changed it.
        if (!conexion->abierta() || conexion->ruta() != imp.DB) {
            try {
                conexion->Abre(imp.DB);
            } catch (const ErrorDeAutomatizacion&) {
            }
        }
        reporte::Inserta(*conexion, {imp.Paginas, imp.nLinea, source, nrow, ncol, contenido, fuente, fsize,
                                     util.ValorNumerico(Variant(bold)), util.ValorNumerico(Variant(italic))});
        // No letter uppercases to more than one letter of the word, so only its length can match.
        if (source.size() == 11 && source.toUpper() == u"PAGINANUEVA"_s) reporte::AnotaPaginas(*conexion, imp.Paginas);
    } catch (...) {
        // A lost row must never stop the document.
    }
}

QString TextoFn(const Variant& valor) { return TextoFn(CDbl(valor)); }

QString TextoFn(double valor) {
    const double redondeado = RedondeaPar(valor * 10000) / 10000;
    return u"Fn(\""_s + UtileriasCompartidas().TextoDeNumero(redondeado) + u"\")"_s;
}

}  // namespace kalo
