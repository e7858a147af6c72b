#include "ordenes.h"

#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPrinterInfo>
#include <climits>
#include <cstdio>
#include <deque>
#include <memory>

#include "cajon.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "paper/formas.h"
#include "registro.h"
#include "spool/conexion.h"
#include "spool/reproduccion.h"
#include "runtime/aplicacion.h"
#include "target/impresora_de_imagenes.h"
#include "target/impresora_sistema.h"
#include "visor.h"

namespace kalo::herramienta {

using namespace Qt::StringLiterals;

namespace {

const char16_t kAyuda[] = uR"(Uso: kaloimpresora ORDEN [OPCIONES]

Reimprime, resume y muestra archivos de reporte (.rep) y guiones de texto con
los mismos comandos, uno por línea.

Órdenes:
  imprime ARCHIVO [opciones]   Vuelve a imprimir el documento grabado.
      --paginas LISTA          Solo estas páginas: 3, 2-5, 1,4,7-9, 10- ...
      --documento N            Solo el documento N del archivo (desde 1).
      --impresora NOMBRE       A esta impresora (véase «kaloimpresora impresoras»).
      --pdf SALIDA.pdf         A un PDF con todas las páginas elegidas.
      --png CARPETA            Una imagen PNG por página en CARPETA.
      --resolucion PPP         Puntos por pulgada de las imágenes (150).
      --estricto               Rechaza el archivo entero si un renglón está mal
                               formado, un comando falla o hay renglones con
                               número repetido o fuera de orden; no imprime nada.
    Sin destino, a la impresora actual (o a PDF en la carpeta de impresos).
  impresoras                   Las impresoras que ve el componente, «*» la actual,
                               y las formas de papel definidas en cada una.
  cajon PUERTO [--codigo TEXTO]  Abre el cajón de dinero (véase más abajo).
  resumen ARCHIVO              Documentos, páginas, comandos, fuentes y renglones
                               mal formados.
  vista ARCHIVO                Visor: página a página, zoom, imprimir, exportar a PDF.
  registra, desregistra        El registro de componentes (véase más abajo).

Una página impresa sola sale igual que en el documento entero: la fuente, el
estilo, el color y la posición que dejan las páginas anteriores se conservan.
Solo se ejecutan los comandos que graba el componente; cualquier otro (borrar
archivos, abrir el cajón, diálogos...) se rechaza. EstableceImpresora se lee
pero no cambia el destino. En un archivo de reporte, FuenteTransparente se
ignora (siempre se graba como False) y Say, FontBold y FontItalic toman de sus
columnas el texto y el valor que se dieron de verdad.

Los renglones mal formados se omiten con un aviso (salvo con --estricto); de
los avisos se muestran los primeros 100 y de los demás solo cuántos son.

Un archivo de otra procedencia se lee sin escribir nada a su lado ni ejecutar
nada de lo que contenga: se rechaza si tiene vistas, disparadores o tablas
virtuales, si sus tablas source y header no son las del componente o si está
dañado. Un
comando de más de 64 KiB (una línea, o el texto de un renglón) se omite como
mal formado. Los renglones con número repetido o fuera de orden se leen por
número, con un aviso (con --estricto, el archivo se rechaza). Los caracteres de
control del archivo se muestran escapados (\x1B).

Códigos de salida:
  0  bien (aunque se hayan omitido renglones con aviso)
  1  orden u opción desconocida, o lista de páginas no válida
  2  el archivo no existe, no se puede leer, está dañado o no es un archivo de
     reporte ni un guion (o lo que contiene no se permite)
  3  con --estricto: renglón mal formado, comando fallido o renglones repetidos
     o fuera de orden; nada se imprimió
  4  la impresora no existe o no se pudo escribir la salida
  5  la selección no tiene ninguna página
)";

void Escribe(FILE* f, const QString& texto) {
    const QByteArray b = texto.toLocal8Bit();
    std::fwrite(b.constData(), 1, b.size(), f);
}

// Text from a file, fit for a terminal: control characters (an escape
// sequence could retitle or reprogram it) and the invisible ones that reorder
// text are written as \xHH or \uHHHH, and a long text is cut.
QString Legible(QStringView texto, qsizetype maximo = 300) {
    QString r;
    r.reserve(std::min(texto.size(), maximo) + 8);
    for (qsizetype i = 0; i < texto.size(); ++i) {
        if (r.size() >= maximo) {
            if (r.back().isHighSurrogate()) r.chop(1);
            return r + u'…';
        }
        const char16_t c = texto[i].unicode();
        if (c < 0x20 || (c >= 0x7F && c < 0xA0))
            r += u"\\x"_s + QString::number(c, 16).toUpper().rightJustified(2, u'0');
        else if (c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
                 c == 0x2028 || c == 0x2029)
            r += u"\\u"_s + QString::number(c, 16).toUpper();
        else
            r += texto[i];
    }
    return r;
}

int Falla(int codigo, const QString& mensaje) {
    Escribe(stderr, u"kaloimpresora: "_s + mensaje + u'\n');
    return codigo;
}

int Uso(const QString& mensaje) {
    return Falla(salida::kUso, mensaje + u"\nPruebe «kaloimpresora --help»."_s);
}

QString Lugar(const QString& archivo, const Incidencia& i) {
    QString lugar = Legible(archivo) + u": "_s;
    if (i.documento == 0)
        lugar += u"antes del primer documento"_s;
    else
        lugar += u"documento %1, página %2"_s.arg(i.documento).arg(i.pagina);
    return lugar + u", renglón %1: "_s.arg(i.renglon);
}

// Messages about a file's rows: the first limite::kMensajes, then only counted.
class Avisos {
public:
    explicit Avisos(const QString& archivo) : archivo_(archivo) {}
    ~Avisos() {
        if (total_ > limite::kMensajes)
            Escribe(stderr, u"kaloimpresora: %1: %2 avisos más que no se muestran\n"_s.arg(Legible(archivo_))
                                .arg(total_ - limite::kMensajes));
    }
    void Muestra(const Incidencia& i, const QString& tipo = {}) {
        if (++total_ <= limite::kMensajes) Escribe(stderr, Lugar(archivo_, i) + tipo + Legible(i.mensaje) + u'\n');
    }
    // Some that were never kept.
    void Cuenta(int64_t mas) { total_ += mas; }

private:
    QString archivo_;
    int64_t total_ = 0;
};

QString Desorden(const ResumenDeGuion& r) {
    return u"%1 renglones con número repetido y %2 fuera de orden"_s.arg(r.repetidos).arg(r.fueraDeOrden);
}

// The file's own failures (missing, not a spool file) exit 2.
template <class F>
int ConArchivo(const QString& archivo, F&& trabajo) {
    try {
        return trabajo();
    } catch (const ErrorDeAutomatizacion& e) {
        const bool delArchivo = e.numero() == err::kArchivoNoEncontrado || e.numero() == err::kAccesoARutaOArchivo ||
                                e.numero() == err::kErrorDeBaseDeDatos;
        return Falla(delArchivo ? salida::kArchivo : salida::kDestino, Legible(e.descripcion(), 1000));
    }
}

// Options of an order: "--nombre valor" or flags.
struct Opciones {
    QStringList posicionales;
    QMap<QString, QString> valores;
    QSet<QString> banderas;
};

std::optional<Opciones> LeeOpciones(const QStringList& args, const QSet<QString>& conValor,
                                    const QSet<QString>& banderas, QString& error) {
    Opciones o;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (!a.startsWith(u"--"_s) || a == u"--"_s) {
            o.posicionales << a;
            continue;
        }
        if (banderas.contains(a)) {
            o.banderas << a;
        } else if (conValor.contains(a)) {
            if (i + 1 >= args.size()) {
                error = u"A la opción %1 le falta su valor"_s.arg(a);
                return std::nullopt;
            }
            if (o.valores.contains(a)) {
                error = u"La opción %1 está repetida"_s.arg(a);
                return std::nullopt;
            }
            o.valores[a] = args[++i];
        } else {
            error = u"Opción desconocida: %1"_s.arg(a);
            return std::nullopt;
        }
    }
    return o;
}

class Progreso {
public:
    explicit Progreso(int total) : total_(total), activo_(isatty(STDERR_FILENO) == 1) {}
    ~Progreso() { Limpia(); }
    // Clears the line before anything else is written.
    void Limpia() {
        if (!mostrado_) return;
        Escribe(stderr, u"\r\x1b[K"_s);
        mostrado_ = false;
    }
    void Pagina(int emitidas) {
        if (!activo_) return;
        mostrado_ = true;
        Escribe(stderr, u"\rImprimiendo página %1 de %2…"_s.arg(emitidas).arg(total_));
        std::fflush(stderr);
    }
private:
    int total_;
    bool activo_;
    bool mostrado_ = false;
};

int CuentaSeleccionadas(const ResumenDeGuion& r, const SeleccionDePaginas& s) {
    int64_t n = 0;
    for (size_t d = 0; d < r.paginasPorDocumento.size(); ++d)
        for (int p = 1; p <= r.paginasPorDocumento[d]; ++p) n += s.Incluye(static_cast<int>(std::min<size_t>(d + 1, INT_MAX)), p);
    return static_cast<int>(std::min<int64_t>(n, INT_MAX));
}

QString NombreDePng(const QString& carpeta, bool variosDocumentos, int documento, int pagina) {
    const QString pag = u"pagina-%1.png"_s.arg(pagina, 3, 10, QChar(u'0'));
    return QDir(carpeta).filePath(variosDocumentos ? u"documento-%1-"_s.arg(documento) + pag : pag);
}

int Imprime(const QStringList& args) {
    QString error;
    const auto o = LeeOpciones(args,
                               {u"--paginas"_s, u"--documento"_s, u"--impresora"_s, u"--pdf"_s, u"--png"_s,
                                u"--resolucion"_s},
                               {u"--estricto"_s}, error);
    if (!o) return Uso(error);
    if (o->posicionales.size() != 1) return Uso(u"«imprime» necesita un ARCHIVO, y solo uno"_s);
    const QString archivo = o->posicionales.first();
    const int destinos = o->valores.contains(u"--impresora"_s) + o->valores.contains(u"--pdf"_s) +
                         o->valores.contains(u"--png"_s);
    if (destinos > 1) return Uso(u"Elija un solo destino: --impresora, --pdf o --png"_s);

    OpcionesDeReproduccion opciones;
    opciones.estricto = o->banderas.contains(u"--estricto"_s);
    if (o->valores.contains(u"--paginas"_s)) {
        const auto rangos = LeeRangosDePaginas(o->valores[u"--paginas"_s]);
        if (!rangos) return Uso(u"Lista de páginas no válida: %1"_s.arg(o->valores[u"--paginas"_s]));
        opciones.seleccion.rangos = *rangos;
    }
    if (o->valores.contains(u"--documento"_s)) {
        bool ok = false;
        const int n = o->valores[u"--documento"_s].toInt(&ok);
        if (!ok || n < 1) return Uso(u"Número de documento no válido: %1"_s.arg(o->valores[u"--documento"_s]));
        opciones.seleccion.documento = n;
    }
    double ppp = 150;
    if (o->valores.contains(u"--resolucion"_s)) {
        bool ok = false;
        ppp = o->valores[u"--resolucion"_s].toDouble(&ok);
        if (!ok || ppp < 10 || ppp > 1200) return Uso(u"Resolución no válida (de 10 a 1200 ppp)"_s);
    }

    return ConArchivo(archivo, [&]() -> int {
        // A first pass, cheap beside drawing: a bad file is refused before
        // anything prints, and the totals feed the progress line and the names.
        const ResumenDeGuion resumen = Resume(*AbreGuion(archivo));
        const bool desordenado = resumen.repetidos > 0 || resumen.fueraDeOrden > 0;
        if (opciones.estricto && (resumen.totalMalFormadas > 0 || desordenado)) {
            {
                Avisos avisos(archivo);
                for (const Incidencia& i : resumen.malFormadas) avisos.Muestra(i);
                avisos.Cuenta(resumen.totalMalFormadas - static_cast<int64_t>(resumen.malFormadas.size()));
            }
            const QString que = desordenado ? Desorden(resumen) : u"%1 renglones mal formados"_s.arg(resumen.totalMalFormadas);
            return Falla(salida::kMalFormado, u"%1: %2; no se imprimió nada"_s.arg(Legible(archivo), que));
        }
        if (desordenado)
            Escribe(stderr, u"kaloimpresora: %1: aviso: %2; se imprimen en orden de número\n"_s.arg(Legible(archivo),
                                                                                                  Desorden(resumen)));
        const int seleccionadas = CuentaSeleccionadas(resumen, opciones.seleccion);
        if (seleccionadas == 0)
            return Falla(salida::kSinPaginas, u"%1: la selección no tiene ninguna página"_s.arg(Legible(archivo)));

        AseguraAplicacion();
        std::shared_ptr<Objeto> impresora;
        std::deque<std::pair<int, int>> pendientes;  // (document, page) of each page begun
        const bool variosDocumentos = resumen.paginasPorDocumento.size() > 1;
        int escritas = 0;
        bool fallaPng = false;
        const QString carpetaPng = o->valores.value(u"--png"_s);
        if (o->valores.contains(u"--impresora"_s)) {
            const QString nombre = o->valores[u"--impresora"_s];
            const QPrinterInfo info = QPrinterInfo::printerInfo(nombre);
            if (info.isNull()) return Falla(salida::kDestino, u"No existe la impresora «%1»"_s.arg(nombre));
            impresora = ImpresoraDelSistema::DeDestino(info);
        } else if (o->valores.contains(u"--pdf"_s)) {
            const QFileInfo pdf(o->valores[u"--pdf"_s]);
            if (!pdf.absoluteDir().exists())
                return Falla(salida::kDestino, u"No existe la carpeta de %1"_s.arg(pdf.filePath()));
            impresora = ImpresoraDelSistema::EnArchivoPdf(pdf.absoluteFilePath());
        } else if (!carpetaPng.isEmpty()) {
            if (!QDir().mkpath(carpetaPng)) return Falla(salida::kDestino, u"No se puede crear %1"_s.arg(carpetaPng));
            impresora = ImpresoraDeImagenes::Crea(qRound(ppp), [&](const QImage& imagen, int) {
                if (pendientes.empty()) return;
                const auto [doc, pag] = pendientes.front();
                pendientes.pop_front();
                const QString nombre = NombreDePng(carpetaPng, variosDocumentos, doc, pag);
                if (imagen.save(nombre, "PNG"))
                    ++escritas;
                else if (!std::exchange(fallaPng, true))
                    Escribe(stderr, u"kaloimpresora: no se pudo escribir %1\n"_s.arg(nombre));
            });
        } else {
            impresora = ImpresoraActual();
        }
        Progreso progreso(seleccionadas);
        int emitidas = 0;
        opciones.alEmitirPagina = [&](int doc, int pag) {
            if (!carpetaPng.isEmpty()) pendientes.emplace_back(doc, pag);
            progreso.Pagina(++emitidas);
        };
        Avisos avisos(archivo);
        opciones.alIncidir = [&](const Incidencia& i) {
            const QString tipo = i.tipo == Incidencia::Tipo::MalFormada ? u"renglón omitido: "_s
                                 : i.tipo == Incidencia::Tipo::Aviso    ? u"aviso: "_s
                                                                        : QString();
            progreso.Limpia();
            avisos.Muestra(i, tipo);
        };
        auto fuente = AbreGuion(archivo);
        const ResultadoDeReproduccion r = Reproduce(*fuente, impresora, opciones);
        progreso.Limpia();
        if (r.abortada)
            return Falla(salida::kMalFormado, u"%1: se detuvo; no se imprimió nada"_s.arg(Legible(archivo)));
        if (r.paginasEmitidas == 0)
            return Falla(salida::kSinPaginas, u"%1: la selección no tiene ninguna página"_s.arg(Legible(archivo)));
        if (fallaPng) return Falla(salida::kDestino, u"No se escribieron todas las imágenes en %1"_s.arg(carpetaPng));

        QString hecho = u"%1: %2 página(s)"_s.arg(Legible(archivo)).arg(r.paginasEmitidas);
        if (!carpetaPng.isEmpty()) {
            hecho += u" en %1 imágenes en %2"_s.arg(escritas).arg(carpetaPng);
        } else {
            const QString nombre = impresora->Lee(u"DeviceName"_s).texto();
            const QString salidaPdf = impresora->Lee(u"ArchivoDeSalida"_s).texto();
            hecho += u" a «%1»"_s.arg(nombre);
            if (!salidaPdf.isEmpty()) hecho += u": "_s + salidaPdf;
        }
        if (r.malFormadas > 0) hecho += u" (%1 renglones omitidos)"_s.arg(r.malFormadas);
        Escribe(stdout, hecho + u'\n');
        return salida::kBien;
    });
}

int Impresoras() {
    AseguraAplicacion();
    const auto coleccion = ColeccionDeImpresoras();
    const QString actual = ImpresoraActual()->Lee(u"DeviceName"_s).texto();
    const formas::Destinos destinos;
    const QString prefijo = QString::fromUtf16(kEstiloPredeterminado) + u'_';
    const int32_t n = CLng(coleccion->Lee(u"Count"_s));
    bool marcada = false;
    for (int32_t i = 0; i < n; ++i) {
        const QString nombre = coleccion->Llama(u"Item"_s, {i}).objeto()->Lee(u"DeviceName"_s).texto();
        const bool esActual = !marcada && nombre == actual;
        marcada |= esActual;
        // A form is shown under its printer, unless it is the current printer itself.
        if (nombre.section(u'/', 1).startsWith(prefijo) && !esActual) continue;
        Escribe(stdout, (esActual ? u"* "_s : u"  "_s) + nombre + u'\n');
        if (nombre.contains(u'/')) continue;
        for (const formas::Forma& f : destinos.FormasDe(nombre))
            Escribe(stdout, u"      forma %1: %2 x %3 mm\n"_s.arg(f.nombre)
                                .arg(f.milesimas.width() / 1000.0)
                                .arg(f.milesimas.height() / 1000.0));
    }
    if (!marcada) Escribe(stdout, u"* %1 (archivos en %2)\n"_s.arg(actual, CarpetaDeImpresos()));
    return salida::kBien;
}

QString Numero(double v) { return QLocale().toString(v, 'g', 6); }

int Resumen(const QStringList& args) {
    if (args.size() != 1 || args.first().startsWith(u"--"_s))
        return Uso(u"«resumen» necesita un ARCHIVO, y solo uno"_s);
    const QString archivo = args.first();
    return ConArchivo(archivo, [&] {
        auto fuente = AbreGuion(archivo);
        const ResumenDeGuion r = Resume(*fuente);
        QString t = u"Archivo: %1 (%2)\n"_s.arg(Legible(archivo), fuente->EsReporte() ? u"archivo de reporte"_s
                                                                                       : u"guion de texto"_s);
        int64_t paginas = 0;
        for (int p : r.paginasPorDocumento) paginas += p;
        t += u"Documentos: %1\n"_s.arg(r.paginasPorDocumento.size());
        for (size_t d = 0; d < r.paginasPorDocumento.size(); ++d)
            t += u"  Documento %1: %2 página(s)\n"_s.arg(d + 1).arg(r.paginasPorDocumento[d]);
        t += u"Páginas: %1\n"_s.arg(paginas);
        t += u"Comandos: %1\n"_s.arg(r.comandos);
        for (const auto& [palabra, veces] : r.porComando) t += u"  %1 %2\n"_s.arg(palabra + u':', -20).arg(veces);
        t += u"Fuentes: %1%2\n"_s.arg(r.fuentes.size()).arg(
            r.masFuentes ? u" (y otras que no se muestran)"_s : QString());
        for (const auto& [nombre, tamano] : r.fuentes) t += u"  %1 %2\n"_s.arg(Legible(nombre, 100), Numero(tamano));
        t += u"Renglones mal formados: %1\n"_s.arg(r.totalMalFormadas);
        for (const Incidencia& i : r.malFormadas) t += u"  "_s + Lugar(archivo, i) + Legible(i.mensaje) + u'\n';
        if (r.totalMalFormadas > static_cast<int64_t>(r.malFormadas.size()))
            t += u"  … y %1 más que no se muestran\n"_s.arg(r.totalMalFormadas - static_cast<int64_t>(r.malFormadas.size()));
        if (fuente->EsReporte()) {
            t += u"Renglones con número repetido: %1\n"_s.arg(r.repetidos);
            t += u"Renglones fuera de orden: %1\n"_s.arg(r.fueraDeOrden);
        }
        Escribe(stdout, t);
        return salida::kBien;
    });
}

int Vista(const QStringList& args) {
    if (args.size() != 1 || args.first().startsWith(u"--"_s)) return Uso(u"«vista» necesita un ARCHIVO, y solo uno"_s);
    const QString archivo = args.first();
    const QString plataforma = qEnvironmentVariable("QT_QPA_PLATFORM");
    const bool sinVentanas = plataforma == u"offscreen"_s || plataforma == u"minimal"_s;
    const bool hayPantalla = qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (sinVentanas || (!hayPantalla && plataforma.isEmpty()))
        return Falla(salida::kDestino, u"No hay pantalla donde mostrar el visor"_s);
    return ConArchivo(archivo, [&] { return MuestraVisor(archivo); });
}

}  // namespace

int Ejecuta(const QStringList& argumentos) {
    if (argumentos.isEmpty()) return Uso(u"Falta la orden"_s);
    const QString orden = argumentos.first();
    const QStringList resto = argumentos.mid(1);
    if (orden == u"--help"_s || orden == u"-h"_s || orden == u"ayuda"_s || resto.contains(u"--help"_s)) {
        Escribe(stdout, QString::fromUtf16(kAyuda) + AyudaDelCajon() + AyudaDelRegistro());
        return salida::kBien;
    }
    if (orden == u"imprime"_s) return Imprime(resto);
    if (orden == u"impresoras"_s) {
        if (!resto.isEmpty()) return Uso(u"«impresoras» no lleva argumentos"_s);
        return Impresoras();
    }
    if (orden == u"cajon"_s) return Cajon(resto);
    if (orden == u"resumen"_s) return Resumen(resto);
    if (orden == u"vista"_s) return Vista(resto);
    if (orden == u"registra"_s) return Registra(resto, true);
    if (orden == u"desregistra"_s) return Registra(resto, false);
    return Uso(u"Orden desconocida: %1"_s.arg(orden));
}

}  // namespace kalo::herramienta
