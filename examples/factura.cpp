// The main job: a two-page retail invoice, driven the way a host drives the
// component — through its automation interface, by member name. The layout
// sits on the 66 x 80 character grid (Row, Col), with a framed header, a
// filled band, rules, the shop's logo, amounts through Formato and the total
// in words through Letra. It goes to the current printer (or the PDF default
// when there is none) and to an image preview saved as PNG, and the preview
// run is recorded in a spool file.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/superficies.h"

using namespace Qt::StringLiterals;
using kalo::Objeto;
using kalo::Variant;

namespace {

struct Partida {
    const char* clave;
    const char* descripcion;
    int cantidad;
    double precio;
};

const Partida kPartidas[] = {
    {"A-100", "Café de olla 250 g", 12, 45.00},       {"A-101", "Pan dulce surtido", 48, 9.00},
    {"B-200", "Leche entera 1 L", 30, 25.50},         {"B-201", "Queso fresco 500 g", 9, 68.00},
    {"C-310", "Tortillas de maíz 1 kg", 55, 22.00},   {"C-311", "Frijol negro 1 kg", 20, 34.00},
    {"D-400", "Jabón de tocador", 16, 14.00},         {"D-401", "Detergente 1 kg", 11, 45.00},
    {"E-520", "Refresco 2 L", 40, 32.00},             {"E-521", "Agua natural 1.5 L", 64, 12.00},
    {"F-610", "Aceite vegetal 1 L", 18, 41.90},       {"F-611", "Azúcar estándar 1 kg", 25, 28.50},
    {"G-700", "Arroz blanco 1 kg", 22, 26.00},        {"G-701", "Sal de mesa 1 kg", 10, 11.50},
    {"H-800", "Papel higiénico 4 rollos", 15, 39.00}, {"H-801", "Servilletas 500 pzas", 8, 35.00},
};
constexpr int kPorPagina = 10;
constexpr double kIva = 0.16;
// Grid columns where the right-aligned fields start.
constexpr double kCantidad = 46, kPrecio = 54, kImporte = 64;

// A small logo drawn once (shapes only: no fonts before the component has
// started the GUI), so the example needs no picture files of its own.
QString Logotipo() {
    const QString ruta = QDir::temp().absoluteFilePath(u"kaloimpresora-logotipo.png"_s);
    QImage imagen(160, 160, QImage::Format_ARGB32);
    imagen.fill(Qt::transparent);
    QPainter p(&imagen);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor(0x2e, 0x7d, 0x32));
    p.setPen(Qt::NoPen);
    p.drawEllipse(8, 8, 144, 144);
    p.setPen(QPen(Qt::white, 14, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPolyline(QPolygonF({QPointF(45, 85), QPointF(72, 112), QPointF(118, 52)}));
    p.end();
    imagen.save(ruta);
    return ruta;
}

class Factura {
public:
    Factura(Objeto& imp, QString logotipo) : imp_(imp), logotipo_(std::move(logotipo)) {}

    void Imprime() {
        imp_.Llama(u"IniciaDocumento"_s);
        const int paginas = (std::size(kPartidas) + kPorPagina - 1) / kPorPagina;
        double subtotal = 0;
        for (int p = 0; p < paginas; ++p) {
            if (p > 0) imp_.Llama(u"PaginaNueva"_s);
            Encabezado(p + 1, paginas);
            const int desde = p * kPorPagina;
            const int hasta = std::min<int>(desde + kPorPagina, std::size(kPartidas));
            for (int i = desde; i < hasta; ++i) subtotal += Renglon(20 + 2 * (i - desde), kPartidas[i]);
            if (p + 1 < paginas)
                Say(44, 52, u"Pasa a la página "_s + QString::number(p + 2) + u"..."_s);
            else
                Totales(subtotal);
        }
        imp_.Llama(u"FinDocumento"_s);
    }

private:
    void Say(double renglon, double columna, const QString& texto) {
        imp_.Llama(u"Say"_s, {imp_.Llama(u"Row"_s, {renglon}), imp_.Llama(u"Col"_s, {columna}), texto});
    }
    // A right-aligned field, the way grid layouts do it: padded to a fixed
    // width and printed in a monospaced font, so every row ends at one place.
    void Campo(double renglon, double columna, int ancho, const QString& texto) {
        Say(renglon, columna, imp_.Llama(u"PadL"_s, {texto, ancho}).texto());
    }
    void Fuente(const char* nombre, double puntos, bool negrita) {
        imp_.Llama(u"EstableceFuente"_s, {nombre, puntos});
        imp_.Llama(u"FontBold"_s, {negrita});
    }
    QString Importe(double valor) { return kalo::CStr(imp_.Llama(u"Formato"_s, {valor, u"$#,##0.00"_s})); }
    Variant X(double columna) { return imp_.Llama(u"Col"_s, {columna}); }
    Variant Y(double renglon) { return imp_.Llama(u"Row"_s, {renglon}); }

    void Encabezado(int pagina, int paginas) {
        imp_.Llama(u"Box"_s, {X(4), Y(3), X(72), Y(10)});
        imp_.Llama(u"Picture"_s, {logotipo_, X(6), Y(4), 0.8, 0.8});
        Fuente("DejaVu Sans", 16, true);
        Say(4.5, 16, u"Abarrotes La Esperanza"_s);
        Fuente("DejaVu Sans", 9, false);
        Say(7.5, 16, u"Av. Juárez 118, Centro · RFC ALE-900101-AB1"_s);
        Say(9.5, 16, u"Factura A-2045 · 22 de noviembre de 2026"_s);
        Say(9.5, 62, u"Página "_s + QString::number(pagina) + u" de "_s + QString::number(paginas));
        // The band behind the column titles.
        imp_.Llama(u"FilledBox"_s, {X(4), Y(15), X(72), Y(2), 0xE8D8C8});
        Fuente("DejaVu Sans Mono", 9, true);
        Say(15.4, 6, u"Clave"_s);
        Say(15.4, 16, u"Descripción"_s);
        Campo(15.4, kCantidad, 6, u"Cant."_s);
        Campo(15.4, kPrecio, 10, u"Precio"_s);
        Campo(15.4, kImporte, 12, u"Importe"_s);
        Fuente("DejaVu Sans Mono", 9, false);
        imp_.Llama(u"Linea"_s, {X(4), Y(17.5), X(76), Y(17.5)});
    }

    double Renglon(double renglon, const Partida& p) {
        const double importe = p.cantidad * p.precio;
        Say(renglon, 6, QString::fromUtf8(p.clave));
        Say(renglon, 16, QString::fromUtf8(p.descripcion));
        Campo(renglon, kCantidad, 6, QString::number(p.cantidad));
        Campo(renglon, kPrecio, 10, Importe(p.precio));
        Campo(renglon, kImporte, 12, Importe(importe));
        return importe;
    }

    void Totales(double subtotal) {
        const double iva = subtotal * kIva;
        const double total = subtotal + iva;
        imp_.Llama(u"Linea"_s, {X(50), Y(41), X(76), Y(41)});
        Say(42, 52, u"Subtotal"_s);
        Campo(42, kImporte, 12, Importe(subtotal));
        Say(44, 52, u"IVA 16 %"_s);
        Campo(44, kImporte, 12, Importe(iva));
        imp_.Llama(u"FontBold"_s, {true});
        Say(46, 52, u"Total"_s);
        Campo(46, kImporte, 12, Importe(total));
        imp_.Llama(u"FontBold"_s, {false});
        imp_.Llama(u"Box"_s, {X(4), Y(49), X(72), Y(4)});
        imp_.Llama(u"FontITalic"_s, {true});
        Say(49.8, 6, u"Son: "_s + imp_.Llama(u"Letra"_s, {total, u"PESOS"_s, true, u"M.N."_s}).texto());
        imp_.Llama(u"FontITalic"_s, {false});
        Say(56, 6, u"Gracias por su compra."_s);
    }

    Objeto& imp_;
    QString logotipo_;
};

}  // namespace

int main() {
    QTextStream salida(stdout);
    try {
        const QString logotipo = Logotipo();

        // Preview with recording: the spool file keeps the whole script; the
        // preview shows one page at a time, so it ends on the last one.
        auto vista = kalo::CreaSuperficieDeImagen(850, 1100, 100);
        auto enPantalla = kalo::CreaObjeto(u"KaloImpresora.Impresora"_s);
        enPantalla->Asigna(u"Pantalla"_s, true);
        enPantalla->Asigna(u"Archivo"_s, true);
        enPantalla->AsignaObjeto(u"Imagen2"_s, vista);
        Factura(*enPantalla, logotipo).Imprime();
        const QString png = QDir::current().absoluteFilePath(u"vista-previa.png"_s);
        vista->Llama(u"GuardaImagen"_s, {png});
        salida << "Vista previa (última página): " << png << '\n';
        salida << "Archivo de reporte: " << kalo::CStr(enPantalla->Lee(u"DB"_s)) << '\n';

        // The same invoice on paper.
        auto enPapel = kalo::CreaObjeto(u"KaloImpresora.Impresora"_s);
        Factura(*enPapel, logotipo).Imprime();
        auto impresora = kalo::ImpresoraActual();
        salida << "Impresa en: " << kalo::CStr(impresora->Lee(u"DeviceName"_s)) << '\n';
        const QString pdf = kalo::CStr(impresora->Lee(u"ArchivoDeSalida"_s));
        if (!pdf.isEmpty()) salida << "Archivo PDF: " << pdf << '\n';
    } catch (const kalo::ErrorDeAutomatizacion& e) {
        QTextStream(stderr) << "Error " << e.numero() << ": " << e.descripcion() << '\n';
        return 1;
    }
    return 0;
}
