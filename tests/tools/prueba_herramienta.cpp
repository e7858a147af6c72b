// The kaloimpresora command run as a user runs it: exit codes, messages
// naming file, page and row, and the files it writes.

#include "comun/prueba.h"

#include "comun/herramienta.h"
#include "comun/herramientas_pdf.h"
#include "automation/componentes.h"
#include "visor.h"

namespace {

class Herramienta : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        guion = Escribe(u"factura.txt"_s,
                        "IniciaDocumento\n"
                        "EstableceFuente \"DejaVu Sans\",Fn(\"12\")\n"
                        "Say Fn(\"1\"),Fn(\"1\"),\"Página uno\"\n"
                        "PaginaNueva\n"
                        "ColorDeFuente 255\n"
                        "Say Fn(\"1\"),Fn(\"1\"),\"Página dos\"\n"
                        "PaginaNueva\n"
                        "Linea Fn(\"1\"),Fn(\"2\"),Fn(\"7\"),Fn(\"2\")\n"
                        "FinDocumento\n");
    }

    QString Escribe(const QString& nombre, const QByteArray& contenido) {
        return kalo::prueba::Escribe(dir.filePath(nombre), contenido);
    }

    Salida Corre(const QStringList& args) {
        auto entorno = QProcessEnvironment::systemEnvironment();
        entorno.remove(u"DISPLAY"_s);
        entorno.remove(u"WAYLAND_DISPLAY"_s);
        // Never the machine's printers: the default printer is the PDF one here.
        entorno.insert(u"CUPS_SERVER"_s, u"127.0.0.1:1"_s);
        entorno.insert(u"KALO_CARPETA_DE_IMPRESOS"_s, dir.filePath(u"impresos"_s));
        // The registry of components, private to the test.
        entorno.insert(u"XDG_DATA_HOME"_s, dir.filePath(u"datos"_s));
        return CorreHerramienta(args, entorno);
    }

    QTemporaryDir dir;
    QString guion;
};

TEST_F(Herramienta, CodigosDeSalidaYMensajes) {
    const QString binario = dir.filePath(u"foto.png"_s);
    QImage(8, 8, QImage::Format_RGB32).save(binario);
    const QString malo = Escribe(u"malo.txt"_s, "IniciaDocumento\nSay Fn(\"1\"),\"x\"\nBorraArchivo\nFinDocumento\n");
    const QString pdf = dir.filePath(u"salida.pdf"_s), falta = dir.filePath(u"no-esta.rep"_s);
    // Arguments, exit code and what stderr says.
    const std::tuple<QStringList, int, QString> casos[] = {
        {{}, 1, u"Falta la orden"_s},
        {{u"reimprime"_s}, 1, u"Orden desconocida: reimprime"_s},
        {{u"imprime"_s, guion, u"--paginas"_s, u"3-1"_s}, 1, u"Lista de páginas no válida: 3-1"_s},
        {{u"imprime"_s, guion, u"--pdf"_s, pdf, u"--png"_s, dir.path()}, 1, u"un solo destino"_s},
        {{u"imprime"_s, guion, u"--color"_s}, 1, u"Opción desconocida: --color"_s},
        {{u"imprime"_s, falta}, 2, u"No se encuentra el archivo "_s + falta},
        {{u"resumen"_s, binario}, 2, u"El archivo "_s + binario + u" no es un archivo de reporte ni un guion"_s},
        {{u"imprime"_s, malo, u"--estricto"_s, u"--pdf"_s, pdf}, 3, u"malo.txt: documento 1, página 1, renglón 2: "_s},
        {{u"imprime"_s, guion, u"--impresora"_s, u"No Existe"_s}, 4, u"No existe la impresora «No Existe»"_s},
        {{u"imprime"_s, guion, u"--paginas"_s, u"9"_s, u"--pdf"_s, pdf}, 5, u"ninguna página"_s},
        {{u"vista"_s, guion}, 4, u"No hay pantalla"_s},
    };
    for (const auto& [args, codigo, enErr] : casos) {
        const Salida s = Corre(args);
        EXPECT_EQ(s.codigo, codigo) << args.join(u' ').toStdString() << "\n" << s.err.toStdString();
        EXPECT_TRUE(s.err.contains(enErr)) << args.join(u' ').toStdString() << "\n" << s.err.toStdString();
    }
    // Strict refusal wrote nothing.
    EXPECT_FALSE(QFile::exists(pdf));
}

TEST_F(Herramienta, AyudaEnEspanolConLosCodigos) {
    const Salida s = Corre({u"--help"_s});
    EXPECT_EQ(s.codigo, 0);
    for (const QString& t : {u"imprime ARCHIVO"_s, u"--estricto"_s, u"impresoras"_s, u"Códigos de salida"_s, u"5  la selección"_s})
        EXPECT_TRUE(s.out.contains(t)) << t.toStdString();
}

TEST_F(Herramienta, RenglonesMalosSeOmitenConAvisoYElRestoSeImprime) {
    const QString mixto = Escribe(u"mixto.txt"_s,
                                  "IniciaDocumento\nSay Fn(\"1\"),Fn(\"1\"),\"bien\"\nAbrirCajonDeDinero \"COM1\"\n"
                                  "PaginaNueva\nSay Fn(\"1\"),\"roto\"\nFinDocumento\n");
    const QString pdf = dir.filePath(u"mixto.pdf"_s);
    const Salida s = Corre({u"imprime"_s, mixto, u"--pdf"_s, pdf});
    EXPECT_EQ(s.codigo, 0) << s.err.toStdString();
    EXPECT_TRUE(s.err.contains(u"mixto.txt: documento 1, página 1, renglón 3: renglón omitido: Comando no permitido"_s))
        << s.err.toStdString();
    EXPECT_TRUE(s.err.contains(u"documento 1, página 2, renglón 5"_s)) << s.err.toStdString();
    EXPECT_EQ(LeePdf(pdf).paginas, 2);
    EXPECT_TRUE(s.out.contains(u"2 renglones omitidos"_s)) << s.out.toStdString();
}

TEST_F(Herramienta, PaginasElegidasAPdfYAPng) {
    const QString pdf = dir.filePath(u"dos.pdf"_s);
    Salida s = Corre({u"imprime"_s, guion, u"--paginas"_s, u"2-3"_s, u"--pdf"_s, pdf});
    ASSERT_EQ(s.codigo, 0) << s.err.toStdString();
    EXPECT_EQ(LeePdf(pdf).paginas, 2);
    EXPECT_TRUE(s.err.isEmpty()) << "sin terminal no hay progreso: " << s.err.toStdString();

    const QString carpeta = dir.filePath(u"png"_s);
    s = Corre({u"imprime"_s, guion, u"--paginas"_s, u"1,3"_s, u"--png"_s, carpeta, u"--resolucion"_s, u"30"_s});
    ASSERT_EQ(s.codigo, 0) << s.err.toStdString();
    EXPECT_EQ(QDir(carpeta).entryList(QDir::Files), (QStringList{u"pagina-001.png"_s, u"pagina-003.png"_s}));
    const QImage tercera(QDir(carpeta).filePath(u"pagina-003.png"_s));
    EXPECT_EQ(tercera.size(), QSize(255, 330));  // Letter at 30 dpi
}

TEST_F(Herramienta, SinDestinoVaALaImpresoraActual) {
    const Salida s = Corre({u"imprime"_s, guion});
    ASSERT_EQ(s.codigo, 0) << s.err.toStdString();
    const QStringList pdfs = QDir(dir.filePath(u"impresos"_s)).entryList({u"*.pdf"_s});
    ASSERT_EQ(pdfs.size(), 1);
    EXPECT_EQ(LeePdf(QDir(dir.filePath(u"impresos"_s)).filePath(pdfs[0])).paginas, 3);
    EXPECT_TRUE(s.out.contains(pdfs[0])) << s.out.toStdString();

    const Salida lista = Corre({u"impresoras"_s});
    EXPECT_EQ(lista.codigo, 0);
    EXPECT_TRUE(lista.out.startsWith(u"* PDF (KaloImpresora)"_s)) << lista.out.toStdString();
}

TEST_F(Herramienta, ResumenCuentaDocumentosPaginasYFuentes) {
    const QString dos = Escribe(u"dos.txt"_s,
                                "LandScape\nIniciaDocumento\nEstableceFuente \"DejaVu Sans\",Fn(\"9.5\")\nPaginaNueva\n"
                                "FinDocumento\nIniciaDocumento\nEstableceFuente \"DejaVu Sans\",Fn(\"9.5\")\n"
                                "Say Fn(\"1\"),Fn(\"1\")\nFinDocumento\n");
    const Salida s = Corre({u"resumen"_s, dos});
    EXPECT_EQ(s.codigo, 0);
    for (const QString& t : {u"(guion de texto)"_s, u"Documentos: 2"_s, u"Documento 1: 2 página(s)"_s,
                             u"Documento 2: 1 página(s)"_s, u"Páginas: 3"_s, u"Comandos: 8"_s, u"Fuentes: 1"_s,
                             u"Renglones mal formados: 1"_s, u"documento 2, página 1, renglón 8: Say"_s})
        EXPECT_TRUE(s.out.contains(t)) << t.toStdString() << "\n" << s.out.toStdString();
}

// The viewer, driven in-process as its buttons drive it.
TEST_F(Herramienta, VisorPasaPaginasAcercaYExporta) {
    kalo::AseguraAplicacion();
    kalo::herramienta::VisorDeReporte visor(guion);
    ASSERT_EQ(visor.TotalDePaginas(), 3);
    EXPECT_EQ(visor.PaginaActual(), 1);
    const QImage primera = visor.Imagen();
    ASSERT_FALSE(primera.isNull());
    visor.Siguiente();
    EXPECT_EQ(visor.PaginaActual(), 2);
    EXPECT_NE(visor.Imagen(), primera);
    visor.IrAPagina(99);
    EXPECT_EQ(visor.PaginaActual(), 3);
    EXPECT_TRUE(visor.Estado().startsWith(u"Documento 1, página 3"_s)) << visor.Estado().toStdString();

    const int ancho = visor.Imagen().width();
    visor.CambiaZoom(2);
    EXPECT_NEAR(visor.Imagen().width(), 2 * ancho, 2);

    const QString pdf = dir.filePath(u"visor.pdf"_s);
    QString error;
    ASSERT_TRUE(visor.ExportaPdf(pdf, &error)) << error.toStdString();
    EXPECT_EQ(LeePdf(pdf).paginas, 3);
    EXPECT_FALSE(visor.ImprimeEn(u"No Existe"_s, &error));
    EXPECT_TRUE(error.contains(u"No Existe"_s));
}

// The library's own entry points, through the command; the registration is
// then found by either identifier, and is gone after desregistra.
TEST_F(Herramienta, RegistraYDesregistraLaBiblioteca) {
    const QString biblioteca = QFileInfo(QString::fromUtf8(KALO_BIBLIOTECA)).absoluteFilePath();
    const QString carpeta = dir.filePath(u"datos/kaloimpresora/componentes"_s);
    Salida s = Corre({u"registra"_s, biblioteca});
    ASSERT_EQ(s.codigo, 0) << s.err.toStdString();
    EXPECT_TRUE(s.out.contains(carpeta)) << s.out.toStdString();
    EXPECT_EQ(QDir(carpeta).entryList(QDir::Files).size(), 2);

    const QByteArray datos = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath(u"datos"_s)));
    const auto porPrograma = kalo::componentes::Busca(u"kaloimpresora.paramdata"_s);
    const auto porClase = kalo::componentes::Busca(u"{e94bec84-e327-4a16-913b-8fbdd11090a8}"_s);
    ASSERT_TRUE(porPrograma && porClase);
    EXPECT_EQ(porPrograma->idDeClase, u"{B3A1E471-9B00-448B-A06E-ABBC3C84DD1D}"_s);
    EXPECT_EQ(porPrograma->idDeInterfaz, u"{7BEFA45F-7BC4-47AA-AF7C-A5C8874CF96F}"_s);
    EXPECT_EQ(porClase->idDePrograma, u"KaloImpresora.Impresora"_s);
    EXPECT_EQ(QFileInfo(porClase->biblioteca).canonicalFilePath(), QFileInfo(biblioteca).canonicalFilePath());
    EXPECT_EQ(porClase->modeloDeHilos, u"Apartment"_s);
    EXPECT_EQ(porClase->version, u"1.0"_s);
    EXPECT_EQ(porClase->locale, u"0x409"_s);

    s = Corre({u"desregistra"_s, biblioteca});
    EXPECT_EQ(s.codigo, 0) << s.err.toStdString();
    EXPECT_FALSE(kalo::componentes::Busca(u"KaloImpresora.Impresora"_s));
    if (datos.isNull()) qunsetenv("XDG_DATA_HOME"); else qputenv("XDG_DATA_HOME", datos);

    s = Corre({u"registra"_s, dir.filePath(u"no-es-biblioteca.so"_s)});
    EXPECT_EQ(s.codigo, 2);
    EXPECT_TRUE(s.err.contains(u"no se pudo cargar"_s)) << s.err.toStdString();
    EXPECT_EQ(Corre({u"registra"_s, biblioteca, u"otra"_s}).codigo, 1);
}

}  // namespace
