// Asks the user for a date range and prints the sales of a sample SQLite
// database that fall in it: the way a host opens a parameter dialog and
// then runs its report with the answers.
//
//   kaloimpresora-ventas [base.db]
//
// The sample database (ventas-ejemplo.db in the current folder unless one is
// named) is created with three months of sales on first use. The report goes
// to the current printer, or to the PDF default where there is none.

#include <QApplication>
#include <QDate>
#include <QFileInfo>
#include <QTextStream>

#include "kaloimpresora/automatizacion.h"

using namespace Qt::StringLiterals;
using kalo::Objeto;
using kalo::Variant;

namespace {

const QDate kDiaCero(1899, 12, 30);

QString Iso(double fecha) { return kDiaCero.addDays(static_cast<qint64>(fecha)).toString(Qt::ISODate); }

void CreaBaseDeEjemplo(Objeto& conexion) {
    const char* clientes[] = {"Abarrotes La Esperanza", "Mostrador", "Cocina Económica Doña Mary",
                              "Papelería El Lápiz", "Mostrador", "Farmacia San Juan"};
    conexion.Llama(u"Execute"_s, {u"CREATE TABLE IF NOT EXISTS ventas (folio INTEGER PRIMARY KEY, fecha TEXT, "
                                   "cliente TEXT, importe REAL)"_s});
    const QDate hoy = QDate::currentDate();
    int folio = 1000;
    for (QDate d = hoy.addMonths(-3); d <= hoy; d = d.addDays(2)) {
        const int n = folio % 3 + 1;
        for (int i = 0; i < n; ++i, ++folio) {
            const double importe = 85.5 + (folio * 37 % 1900) + (folio % 7) * 0.25;
            conexion.Llama(u"Execute"_s, {u"INSERT INTO ventas VALUES (%1, '%2', '%3', %4)"_s.arg(folio)
                                              .arg(d.toString(Qt::ISODate), QString::fromUtf8(clientes[folio % 6]))
                                              .arg(importe, 0, 'f', 2)});
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    QApplication aplicacion(argc, argv);
    QTextStream salida(stdout);
    const QString archivo = argc > 1 ? QString::fromLocal8Bit(argv[1]) : u"ventas-ejemplo.db"_s;
    const bool nueva = !QFileInfo::exists(archivo);

    try {
        auto conexion = kalo::CreaObjeto(u"ADODB.Connection"_s);
        conexion->Llama(u"Open"_s, {u"Data Source="_s + archivo});
        if (nueva) CreaBaseDeEjemplo(*conexion);

        // The environment the dialog reads: the working period is this month.
        auto ambiente = kalo::CreaObjeto(u"KaloEnviroment.Ambiente"_s);
        ambiente->AsignaObjeto(u"Conexion"_s, conexion);
        ambiente->Asigna(u"Periodo1"_s, QDate::currentDate().year());
        ambiente->Asigna(u"Periodo2"_s, QDate::currentDate().month());

        auto imp = kalo::CreaObjeto(u"KaloImpresora.Impresora"_s);
        imp->Llama(u"RangoDeFechas"_s, {u"Ventas por fecha"_s, Variant(ambiente), true});
        if (kalo::CBool(imp->Lee(u"Cancelado"_s))) {
            salida << "Cancelado.\n";
            return 0;
        }
        const bool todas = kalo::CBool(imp->Lee(u"Todos"_s));
        const QString desde = Iso(kalo::CDate(imp->Lee(u"FechaInicial"_s)));
        const QString hasta = Iso(kalo::CDate(imp->Lee(u"FechaFinal"_s)));
        QString sql = u"SELECT fecha, folio, cliente, importe FROM ventas"_s;
        if (!todas) sql += u" WHERE fecha BETWEEN '%1' AND '%2'"_s.arg(desde, hasta);
        sql += u" ORDER BY fecha, folio"_s;
        Variant consulta = sql;
        auto rs = imp->Llama(u"rst"_s, {consulta, Variant(conexion)}).objeto();

        imp->Llama(u"IniciaDocumento"_s);
        imp->Llama(u"EstableceFuente"_s, {u"DejaVu Sans"_s, 14});
        imp->Llama(u"FontBold"_s, {true});
        imp->Llama(u"Say"_s, {0.5, 0.75, u"Ventas por fecha"_s});
        imp->Llama(u"EstableceFuente"_s, {u"DejaVu Sans Mono"_s, 9});
        imp->Llama(u"FontBold"_s, {false});
        imp->Llama(u"Say"_s, {0.85, 0.75, todas ? u"Todas las fechas"_s : u"Del %1 al %2"_s.arg(desde, hasta)});
        const double arriba = 1.25, alto = 0.18, abajo = 10.25;
        double y = arriba;
        double total = 0;
        int ventas = 0;
        const auto linea = [&](const QString& texto) {
            if (y > abajo) {
                imp->Llama(u"PaginaNueva"_s);
                y = arriba;
            }
            imp->Llama(u"Say"_s, {y, 0.75, texto});
            y += alto;
        };
        linea(u"Fecha       Folio  Cliente                                 Importe"_s);
        while (!kalo::CBool(rs->Lee(u"EOF"_s))) {
            auto campos = rs->Lee(u"Fields"_s).objeto();
            const auto campo = [&](int i) { return campos->Llama(u"Item"_s, {i}).objeto()->Lee(u"Value"_s); };
            const double importe = kalo::CDbl(campo(3));
            linea(u"%1  %2  %3 %4"_s.arg(kalo::CStr(campo(0)), kalo::CStr(campo(1)).rightJustified(5))
                      .arg(kalo::CStr(campo(2)).leftJustified(36, u' ', true))
                      .arg(importe, 10, 'f', 2));
            total += importe;
            ++ventas;
            rs->Llama(u"MoveNext"_s);
        }
        linea(QString());
        linea(u"%1 ventas%2"_s.arg(ventas, 5).arg(total, 58, 'f', 2));
        imp->Llama(u"FinDocumento"_s);
        salida << ventas << " ventas, total " << QString::number(total, 'f', 2) << ", a la impresora actual.\n";
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        salida << "Error " << e.numero() << ": " << e.descripcion() << '\n';
        return 1;
    }
    return 0;
}
