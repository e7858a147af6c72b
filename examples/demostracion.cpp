// The main job: drives the component the way a host does, through its
// automation interface by member name. It prints a three-page sales report on
// the current printer (or the PDF default when there is none), shows the same
// report in an image preview saved as PNG, and records it in a spool file.

#include <QDir>
#include <QTextStream>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/superficies.h"

using namespace Qt::StringLiterals;
using kalo::Objeto;
using kalo::Variant;

namespace {

struct Venta {
    const char* clave;
    const char* descripcion;
    int cantidad;
    double importe;
};

const Venta kVentas[] = {
    {"A-100", "Café de olla 250 g", 12, 540.00},  {"A-101", "Pan dulce surtido", 48, 432.00},
    {"B-200", "Leche entera 1 L", 30, 765.00},     {"B-201", "Queso fresco 500 g", 9, 612.00},
    {"C-310", "Tortillas de maíz 1 kg", 55, 1210.00}, {"C-311", "Frijol negro 1 kg", 20, 680.00},
    {"D-400", "Jabón de tocador", 16, 224.00},     {"D-401", "Detergente 1 kg", 11, 495.00},
    {"E-520", "Refresco 2 L", 40, 1280.00},        {"E-521", "Agua natural 1.5 L", 64, 768.00},
};

// One page: a framed header, column titles over a rule, then the rows.
void Pagina(Objeto& imp, int numero, int total, int desde, int hasta) {
    auto say = [&](double renglon, double columna, const QString& texto) {
        imp.Llama(u"Say"_s, {imp.Llama(u"Row"_s, {renglon}), imp.Llama(u"Col"_s, {columna}), texto});
    };
    imp.Llama(u"FilledBox"_s, {0.5, 0.5, 7.5, 0.9, 0xF0E0D0});
    imp.Llama(u"Box"_s, {0.5, 0.5, 7.5, 0.9});
    imp.Llama(u"EstableceFuente"_s, {"DejaVu Sans", 16});
    imp.Llama(u"FontBold"_s, {true});
    say(4, 8, u"Abarrotes La Esperanza — Ventas del día"_s);
    imp.Llama(u"FontBold"_s, {false});
    imp.Llama(u"EstableceFuente"_s, {"DejaVu Sans", 10});
    say(6, 8, QStringLiteral("Página %1 de %2").arg(numero).arg(total));
    say(10, 8, u"Clave"_s);
    say(10, 18, u"Descripción"_s);
    say(10, 52, u"Cantidad"_s);
    say(10, 66, u"Importe"_s);
    imp.Llama(u"Linea"_s, {0.75, 1.95, 7.75, 1.95});
    for (int i = desde; i < hasta; ++i) {
        const Venta& v = kVentas[i];
        const double renglon = 12 + 2 * (i - desde);
        say(renglon, 8, QString::fromUtf8(v.clave));
        say(renglon, 18, QString::fromUtf8(v.descripcion));
        say(renglon, 52, imp.Llama(u"PadL"_s, {v.cantidad, 8}).texto());
        say(renglon, 66, imp.Llama(u"PadL"_s, {QString::number(v.importe, 'f', 2), 10}).texto());
    }
    imp.Llama(u"PCircle"_s, {7.5, 10.3, 0.25});
}

void Reporte(Objeto& imp) {
    imp.Llama(u"IniciaDocumento"_s);
    const int porPagina = 4;
    const int total = (std::size(kVentas) + porPagina - 1) / porPagina;
    for (int p = 0; p < total; ++p) {
        if (p > 0) imp.Llama(u"PaginaNueva"_s);
        Pagina(imp, p + 1, total, p * porPagina, std::min<int>((p + 1) * porPagina, std::size(kVentas)));
    }
    imp.Llama(u"FinDocumento"_s);
}

}  // namespace

int main() {
    QTextStream salida(stdout);
    try {
        // Preview with recording: the spool file keeps the whole script; the
        // preview shows the last page, saved as PNG.
        auto vista = kalo::CreaSuperficieDeImagen(850, 1100, 100);
        auto enPantalla = kalo::CreaObjeto(u"KaloImpresora.Impresora"_s);
        enPantalla->Asigna(u"Pantalla"_s, true);
        enPantalla->Asigna(u"Archivo"_s, true);
        enPantalla->AsignaObjeto(u"Imagen2"_s, vista);
        Reporte(*enPantalla);
        const QString png = QDir::current().absoluteFilePath(u"vista-previa.png"_s);
        vista->Llama(u"GuardaImagen"_s, {png});
        salida << "Vista previa (última página): " << png << '\n';
        salida << "Archivo de reporte: " << kalo::CStr(enPantalla->Lee(u"DB"_s)) << '\n';

        // The same report on the printer.
        auto enPapel = kalo::CreaObjeto(u"KaloImpresora.Impresora"_s);
        Reporte(*enPapel);
        auto impresora = kalo::ImpresoraActual();
        salida << "Impreso en: " << kalo::CStr(impresora->Lee(u"DeviceName"_s)) << '\n';
        const QString pdf = kalo::CStr(impresora->Lee(u"ArchivoDeSalida"_s));
        if (!pdf.isEmpty()) salida << "Archivo PDF: " << pdf << '\n';
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        QTextStream(stderr) << "Error " << e.numero() << ": " << e.descripcion() << '\n';
        return 1;
    }
    return 0;
}
