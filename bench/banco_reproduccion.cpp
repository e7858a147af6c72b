// Replaying a long spool file to the PDF printer against painting the same
// report straight on a PDF device of the same resolution, and the peak memory
// of each: a replay streams its rows, so its memory must not follow the pages.

#include <benchmark/benchmark.h>

#include <QFile>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <string>

#include "memoria.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/superficies.h"
#include "insert_desnudo.h"
#include "spool/lector.h"
#include "spool/reproduccion.h"
#include "runtime/aplicacion.h"
#include "target/impresora_sistema.h"
#include "target/modulo4.h"

namespace {

using namespace Qt::StringLiterals;

// The component's grid on its default sheet: 66 rows by 80 columns of Letter.
constexpr double kPulgadasPorRenglon = 11.0 / 66;
constexpr double kPulgadasPorColumna = 8.5 / 80;
constexpr int kDetalles = 45;
constexpr int32_t kGrisDeBanda = 0xE0E0E0;  // the same in either byte order

struct Columna {
    double columna;
    QString titulo;
};

const std::array<Columna, 5>& Columnas() {
    static const std::array<Columna, 5> columnas{{{5, u"Clave"_s},
                                                  {15, u"Descripción"_s},
                                                  {45, u"Cantidad"_s},
                                                  {56, u"Precio"_s},
                                                  {66, u"Importe"_s}}};
    return columnas;
}

QString Importe(int64_t centavos) {
    return u"$ "_s + QString::number(centavos / 100) + u'.' + QString::number(centavos % 100).rightJustified(2, u'0');
}

// One report, walked for whoever draws it: the recorder and the bare painter
// see the same texts, fonts, positions (in rows and columns) and page breaks.
template <class Dibujo>
void RecorreInforme(int paginas, Dibujo& d) {
    static const std::array<QString, 8> kArticulos{u"Refresco de cola 600 ml"_s,  u"Pan de caja integral"_s,
                                                   u"Leche entera 1 l"_s,          u"Café molido 400 g"_s,
                                                   u"Detergente en polvo 1 kg"_s,  u"Aceite de cártamo 900 ml"_s,
                                                   u"Arroz súper extra 1 kg"_s,    u"Atún en agua 140 g"_s};
    const auto& columnas = Columnas();
    for (int pagina = 1; pagina <= paginas; ++pagina) {
        if (pagina > 1) d.NuevaPagina();
        d.Fuente(u"DejaVu Sans"_s, 14);
        d.Negrita(true);
        d.Texto(2, 5, u"Ventas por artículo — Sucursal Centro"_s);
        d.Texto(2, 64, u"Página "_s + QString::number(pagina));
        d.Fuente(u"DejaVu Sans"_s, 9);
        d.Negrita(false);
        d.Texto(3.4, 5, u"Del 1 al 31 de marzo de 2025"_s);

        d.Banda(5, 4.5, 71, 1, kGrisDeBanda);
        d.Negrita(true);
        for (const Columna& c : columnas) d.Texto(5.15, c.columna, c.titulo);
        d.Negrita(false);

        int64_t total = 0;
        for (int i = 0; i < kDetalles; ++i) {
            const int n = (pagina - 1) * kDetalles + i;
            const int cantidad = 1 + (n * 7) % 23;
            const int64_t precio = 950 + (n * 389) % 14000;
            const int64_t importe = cantidad * precio;
            total += importe;
            const double renglon = 6.5 + i;
            d.Texto(renglon, columnas[0].columna, u"A-"_s + QString::number(100000 + n * 13));
            d.Texto(renglon, columnas[1].columna, kArticulos[n % kArticulos.size()]);
            d.Texto(renglon, columnas[2].columna, QString::number(cantidad));
            d.Texto(renglon, columnas[3].columna, Importe(precio));
            d.Texto(renglon, columnas[4].columna, Importe(importe));
        }

        d.Regla(52, 4.5, 75.5);
        d.Negrita(true);
        d.Texto(52.4, 45, u"Total de la página"_s);
        d.Texto(52.4, 66, Importe(total));
        d.Negrita(false);
        d.Texto(63, 5, u"Impreso el 1 de abril de 2025 a las 09:30 — hoja "_s + QString::number(pagina) + u" de "_s +
                           QString::number(paginas));
    }
}

// Through the component, as a host would record it.
struct Grabador {
    kalo::Impresora& imp;

    void Fuente(const QString& nombre, double puntos) { imp.EstableceFuente(nombre, puntos); }
    void Negrita(bool si) { imp.FontBold(si); }
    void Texto(double renglon, double columna, const QString& texto) {
        imp.Say(imp.Row(renglon), imp.Col(columna), texto);
    }
    void Banda(double renglon, double columna, double columnas, double renglones, int32_t color) {
        imp.FilledBox(imp.Col(columna), imp.Row(renglon), imp.Col(columnas), imp.Row(renglones), color);
    }
    void Regla(double renglon, double desde, double hasta) {
        imp.Linea(imp.Col(desde), imp.Row(renglon), imp.Col(hasta), imp.Row(renglon));
    }
    void NuevaPagina() { imp.PaginaNueva(); }
};

// A host binding late: every member reached by name through the automation
// boundary (Objeto::Llama, as a C++ host calls it), Row and Col included.
struct Tardio {
    kalo::Objeto& imp;

    kalo::Variant Llama(const QString& miembro, std::initializer_list<kalo::Variant> argumentos) {
        return imp.Llama(miembro, argumentos);
    }
    kalo::Variant Renglon(double r) { return Llama(u"Row"_s, {r}); }
    kalo::Variant Columna(double c) { return Llama(u"Col"_s, {c}); }

    void Fuente(const QString& nombre, double puntos) { Llama(u"EstableceFuente"_s, {nombre, puntos}); }
    void Negrita(bool si) { Llama(u"FontBold"_s, {si}); }
    void Texto(double renglon, double columna, const QString& texto) {
        Llama(u"Say"_s, {Renglon(renglon), Columna(columna), texto});
    }
    void Banda(double renglon, double columna, double columnas, double renglones, int32_t color) {
        Llama(u"FilledBox"_s, {Columna(columna), Renglon(renglon), Columna(columnas), Renglon(renglones), color});
    }
    void Regla(double renglon, double desde, double hasta) {
        Llama(u"Linea"_s, {Columna(desde), Renglon(renglon), Columna(hasta), Renglon(renglon)});
    }
    void NuevaPagina() { Llama(u"PaginaNueva"_s, {}); }
};

// Straight on the device: what the printer object does, with nothing between.
class PintorDirecto {
public:
    PintorDirecto(QPainter& pintor, QPagedPaintDevice& hoja, double ppp) : p_(pintor), hoja_(hoja), ppp_(ppp) {
        QPen pluma(Qt::black, 1);
        pluma.setCapStyle(Qt::SquareCap);
        p_.setPen(pluma);
        p_.setRenderHint(QPainter::Antialiasing, false);
    }

    void Fuente(const QString& nombre, double puntos) {
        fuente_ = QFont(nombre);
        fuente_.setPointSizeF(puntos);
        Aplica();
    }
    void Negrita(bool si) {
        fuente_.setBold(si);
        Aplica();
    }
    void Texto(double renglon, double columna, const QString& texto) {
        p_.drawText(QPointF(X(columna), Y(renglon) + ascenso_), texto);
    }
    void Banda(double renglon, double columna, double columnas, double renglones, int32_t color) {
        p_.fillRect(QRectF(X(columna), Y(renglon), X(columnas), Y(renglones)),
                    QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF));
    }
    void Regla(double renglon, double desde, double hasta) {
        p_.drawLine(QPointF(X(desde), Y(renglon)), QPointF(X(hasta), Y(renglon)));
    }
    void NuevaPagina() { hoja_.newPage(); }

private:
    double X(double columna) const { return columna * kPulgadasPorColumna * ppp_; }
    double Y(double renglon) const { return renglon * kPulgadasPorRenglon * ppp_; }
    void Aplica() {
        p_.setFont(fuente_);
        ascenso_ = QFontMetricsF(p_.font(), &hoja_).ascent();
    }

    QPainter& p_;
    QPagedPaintDevice& hoja_;
    double ppp_;
    QFont fuente_;
    double ascenso_ = 0;
};

QTemporaryDir& Carpeta() {
    static QTemporaryDir carpeta;
    return carpeta;
}

// The spool file of a report of that many pages, recorded once per run on
// the image preview, as the component writes it for any host.
QString ReporteDe(int paginas) {
    static std::map<int, QString> hechos;
    if (auto hecho = hechos.find(paginas); hecho != hechos.end()) return hecho->second;

    kalo::modulo4::Estado() = {};
    // The preview still reads the current printer's offsets; keep it off the machine's queues.
    kalo::EstableceImpresoraActual(kalo::ImpresoraDelSistema::EnArchivoPdf(Carpeta().filePath(u"sin-uso.pdf"_s)));
    QString grabado;
    {
        kalo::Impresora imp;
        imp.Pantalla = true;
        imp.Archivo = true;
        imp.Imagen2 = kalo::CreaSuperficieDeImagen(850, 1100, 100);
        imp.IniciaDocumento();
        Grabador grabador{imp};
        RecorreInforme(paginas, grabador);
        imp.FinDocumento();
        grabado = imp.DB;
        imp.sq = nullptr;
    }
    kalo::EstableceImpresoraActual(nullptr);

    const QString reporte = Carpeta().filePath(u"informe-%1.rep"_s.arg(paginas));
    kalo::banco::BorraReporte(reporte);
    if (!QFile::rename(grabado, reporte)) return {};
    kalo::banco::BorraReporte(grabado);
    return hechos[paginas] = reporte;
}

// The same report as a text script: the spool file's command texts, one per line.
QString GuionDe(int paginas) {
    static std::map<int, QString> hechos;
    if (auto hecho = hechos.find(paginas); hecho != hechos.end()) return hecho->second;
    const QString reporte = ReporteDe(paginas);
    if (reporte.isEmpty()) return {};
    const QString guion = Carpeta().filePath(u"informe-%1.txt"_s.arg(paginas));
    QFile salida(guion);
    if (!salida.open(QIODevice::WriteOnly)) return {};
    kalo::LectorDeReporte lector(reporte);
    kalo::LectorDeReporte::Renglon renglon;
    while (lector.Siguiente(renglon)) salida.write(renglon.source.toUtf8());
    return hechos[paginas] = guion;
}

using kalo::banco::CampoDeEstadoMiB;
using kalo::banco::ReiniciaPico;

void AnotaMemoria(benchmark::State& estado, double antes) {
    const double pico = CampoDeEstadoMiB("VmHWM");
    estado.counters["rss_antes_MiB"] = antes;
    estado.counters["pico_MiB"] = pico;
    estado.counters["crece_MiB"] = pico - antes;
}

void AnotaSalida(benchmark::State& estado, int paginas, const QString& pdf) {
    estado.counters["paginas_por_s"] = benchmark::Counter(paginas, benchmark::Counter::kIsIterationInvariantRate);
    estado.counters["pdf_KiB"] = QFileInfo(pdf).size() / 1024.0;
}

// Replays a spool file or a script (whichever `archivo` is) to a PDF.
void ReproduceAPdf(benchmark::State& estado, int paginas, const QString& archivo, const QString& salida) {
    if (archivo.isEmpty()) return estado.SkipWithError("no se pudo escribir el documento");
    auto impresora = kalo::ImpresoraDelSistema::EnArchivoPdf(salida);
    kalo::ResultadoDeReproduccion resultado;
    const double antes = ReiniciaPico();
    for (auto _ : estado) {
        auto fuente = kalo::AbreGuion(archivo);
        resultado = kalo::Reproduce(*fuente, impresora, {});
    }
    AnotaMemoria(estado, antes);
    if (resultado.paginasEmitidas != paginas || resultado.errores != 0 || resultado.malFormadas != 0)
        return estado.SkipWithError("la reproducción no dio el documento grabado");
    AnotaSalida(estado, paginas, salida);
    estado.counters["comandos"] = static_cast<double>(resultado.comandos);
}

void ReproduccionAPdf(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    const int paginas = static_cast<int>(estado.range(0));
    ReproduceAPdf(estado, paginas, ReporteDe(paginas), Carpeta().filePath(u"reproduccion-%1.pdf"_s.arg(paginas)));
}
BENCHMARK(ReproduccionAPdf)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(3);

// The same report as a text script.
void GuionAPdf(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    const int paginas = static_cast<int>(estado.range(0));
    ReproduceAPdf(estado, paginas, GuionDe(paginas), Carpeta().filePath(u"guion-%1.pdf"_s.arg(paginas)));
}
BENCHMARK(GuionAPdf)->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(3);

// A host printing the report late-bound to the PDF printer, nothing recorded.
void InformeTardioAPdf(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    const int paginas = static_cast<int>(estado.range(0));
    const QString salida = Carpeta().filePath(u"tardio-%1.pdf"_s.arg(paginas));
    kalo::modulo4::Estado() = {};
    kalo::EstableceImpresoraActual(kalo::ImpresoraDelSistema::EnArchivoPdf(salida));
    for (auto _ : estado) {
        auto imp = std::make_shared<kalo::Impresora>();
        Tardio tardio{*imp};
        tardio.Llama(u"IniciaDocumento"_s, {});
        RecorreInforme(paginas, tardio);
        tardio.Llama(u"FinDocumento"_s, {});
    }
    kalo::EstableceImpresoraActual(nullptr);
    AnotaSalida(estado, paginas, salida);
}
BENCHMARK(InformeTardioAPdf)->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(3);

// The least the same document can cost: one painter on a PDF writer with the
// printer's sheet, margins and resolution.
void QPainterDirectoAPdf(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    const int paginas = static_cast<int>(estado.range(0));
    const QString salida = Carpeta().filePath(u"directo-%1.pdf"_s.arg(paginas));
    const int ppp = kalo::ImpresoraDelSistema::EnArchivoPdf(salida)->Dispositivo().resolution();

    const double antes = ReiniciaPico();
    for (auto _ : estado) {
        QPdfWriter pdf(salida);
        pdf.setResolution(ppp);
        pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0),
                                      QPageLayout::Point));
        QPainter pintor(&pdf);
        PintorDirecto directo(pintor, pdf, ppp);
        RecorreInforme(paginas, directo);
        pintor.end();
    }
    AnotaMemoria(estado, antes);
    AnotaSalida(estado, paginas, salida);
}
BENCHMARK(QPainterDirectoAPdf)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
