// Drives the component the way a host does: creates its objects by program
// identifier and reaches every member late-bound, by name.

#include <QTextStream>

#include "kaloimpresora/automatizacion.h"

using kalo::Variant;

int main() {
    QTextStream salida(stdout);
    try {
        auto impresora = kalo::CreaObjeto(QStringLiteral("KaloImpresora.Impresora"));
        salida << "Página lógica: " << kalo::CStr(impresora->Lee(QStringLiteral("FormaAncho"))) << " x "
               << kalo::CStr(impresora->Lee(QStringLiteral("FormaAlto"))) << " pulgadas, "
               << kalo::CStr(impresora->Lee(QStringLiteral("nRow"))) << " renglones de "
               << kalo::CStr(impresora->Lee(QStringLiteral("nCol"))) << " columnas\n";
        salida << "Estilo de impresión: " << kalo::CStr(impresora->Lee(QStringLiteral("EstiloImpresion")))
               << "\n";

        auto parametros = kalo::CreaObjeto(QStringLiteral("KaloImpresora.ParamData"));
        parametros->Llama(QStringLiteral("ParametrosRequeridos"),
                          {"SELECT clave FROM clientes", "Cliente inicial", "SELECT clave FROM clientes",
                           "Cliente final", Variant::Falta(), Variant::Falta(), Variant::Falta(),
                           Variant::Falta(), true});
        impresora->AsignaObjeto(QStringLiteral("ParamData"), parametros);
        auto leido = impresora->Lee(QStringLiteral("ParamData")).objeto();
        salida << "Primer rango pedido: " << kalo::CStr(leido->Lee(QStringLiteral("Param1"))) << " ("
               << kalo::CStr(leido->Lee(QStringLiteral("LeyendaIni"))) << " – "
               << kalo::CStr(leido->Lee(QStringLiteral("LeyendaFin"))) << ")\n";

        Variant texto("Don't");
        Variant argumentos[] = {texto};
        const Variant preparado = impresora->InvocaPorNombre(QStringLiteral("Prepara"), kalo::Llamada::Metodo, argumentos);
        salida << "Prepara: " << kalo::CStr(preparado) << '\n';
        salida << "Renglón con total: "
               << kalo::CStr(impresora->Llama(QStringLiteral("PadL"), {"1,234.50", 12})) << '\n';
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        QTextStream(stderr) << "Error " << e.numero() << ": " << e.descripcion() << '\n';
        return 1;
    }
    return 0;
}
