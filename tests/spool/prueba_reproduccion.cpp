// Replay: a recorded document printed again must look exactly as the
// document printed directly, whole or a page at a time. How the command
// reports files it cannot read is in tests/tools/prueba_herramienta.cpp.

#include "comun/prueba.h"

#include "spool/reproduccion.h"
#include "target/impresora_de_imagenes.h"
#include "target/modulo4.h"

namespace {

constexpr int kPpp = 40;  // enough to tell fonts and colours apart, quick to compare

// Three pages whose last one depends on state set on the first two.
void DocumentoDePrueba(Impresora& imp) {
    imp.IniciaDocumento();
    imp.EstableceFuente(u"DejaVu Sans"_s, 14);
    imp.FontBold(1);  // recorded as "FontBold False"; the bold column keeps the truth
    imp.Say(1, 1, u"Página uno"_s);
    imp.FilledBox(1, 2, 6, 1, 0xC0FFC0);
    imp.FuenteTransparente(true);
    imp.Say(2.2, 1.2, u"sobre la banda"_s);
    imp.PaginaNueva();
    imp.ColorDeFuente(255);
    imp.FontITalic(-1);
    imp.Linea(1, 3, 7, 3);
    imp.PaginaNueva();
    imp.Say(4, 2, u"dijo \"hola\""_s);  // its double quotes survive only in the contenido column
    imp.PCircle(4, 6, 1);
    imp.FinDocumento();
}

using Paginas = std::vector<QImage>;

std::shared_ptr<ImpresoraDeImagenes> ImpresoraQueJunta(Paginas& paginas) {
    return ImpresoraDeImagenes::Crea(kPpp, [&paginas](const QImage& i, int) { paginas.push_back(i.copy()); });
}

Paginas Imprime(const QString& archivo, const OpcionesDeReproduccion& o = {}, ResultadoDeReproduccion* r = nullptr) {
    Paginas paginas;
    const ResultadoDeReproduccion res = Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(paginas), o);
    if (r) *r = res;
    return paginas;
}

// The same document printed straight to images, and shown on a preview while recorded.
class Reproduccion : public ConImpresoraYVistaGrabadoras<> {
protected:
    void SetUp() override {
        ConImpresoraYVistaGrabadoras::SetUp();
        {
            Impresora directa;
            EstableceImpresoraActual(ImpresoraQueJunta(directas));
            DocumentoDePrueba(directa);
        }
        EstableceImpresoraActual(impresora);
        modulo4::Estado() = {};
        DocumentoDePrueba(imp);
    }

    Paginas directas;
};

// A page left out is still run, suppressed, so what it set carries over.
TEST_F(Reproduccion, CadaPaginaElegidaSaleIgualQueEnElDocumentoDirecto) {
    ASSERT_EQ(directas.size(), 3u);
    // Ranges asked for, and the direct pages they must give.
    const std::pair<std::vector<std::pair<int, int>>, std::vector<size_t>> casos[] = {
        {{}, {0, 1, 2}},
        {{{2, INT32_MAX}}, {1, 2}},
        {{{1, 1}, {3, 3}}, {0, 2}},
    };
    for (const auto& caso : casos) {
        const auto& [rangos, esperadas] = caso;
        SCOPED_TRACE(&caso - casos);
        OpcionesDeReproduccion o;
        o.seleccion.rangos = rangos;
        ResultadoDeReproduccion r;
        const Paginas p = Imprime(imp.DB, o, &r);
        EXPECT_EQ(r.paginasEmitidas, static_cast<int>(esperadas.size()));
        EXPECT_EQ(r.malFormadas, 0);
        EXPECT_EQ(r.errores, 0);
        ASSERT_EQ(p.size(), esperadas.size());
        for (size_t i = 0; i < p.size(); ++i) EXPECT_TRUE(p[i] == directas[esperadas[i]]) << "salida " << i;
    }
}

TEST(ReproduccionDeGuion, VariosDocumentosSonVariosYSeEligenPorNumero) {
    QTemporaryDir dir;
    const QString archivo = Escribe(dir.filePath(u"dos.txt"_s),
                                    "IniciaDocumento\r\nSay Fn(\"1\"),Fn(\"1\"),\"uno\"\r\nPaginaNueva\r\n"
                                    "FinDocumento\r\nColorDeFuente 255\r\n"
                                    "IniciaDocumento\nSay Fn(\"1\"),Fn(\"1\"),\"dos\"\nFinDocumento\n");
    OpcionesDeReproduccion o;
    o.seleccion.documento = 2;
    ResultadoDeReproduccion r;
    const Paginas todas = Imprime(archivo), segundo = Imprime(archivo, o, &r);
    ASSERT_EQ(todas.size(), 3u);
    ASSERT_EQ(segundo.size(), 1u);
    EXPECT_EQ(r.paginasEmitidas, 1);
    EXPECT_TRUE(segundo[0] == todas[2]);
    EXPECT_FALSE(todas[0] == todas[2]);
}

// Foreign commands are refused and touch nothing; a message box the component
// raises becomes a notice on its row. Neither stops the rest.
TEST(ReproduccionDeGuion, ComandosAjenosSeRechazanYUnMensajeSeVuelveAviso) {
    QTemporaryDir dir;
    const QString victima = dir.filePath(u"victima.txt"_s);
    QFile(victima).open(QIODevice::WriteOnly);
    const QString archivo = Escribe(dir.filePath(u"ajeno.txt"_s),
                                    "IniciaDocumento\nstrTemp \"" + victima.toUtf8() +
                                        "\"\nBorraArchivo\nAbrirCajonDeDinero\nCreaBaseDeDatos\nRangoDeFechas\n"
                                        "Codigo39 Fn(\"100\"),Fn(\"100\"),Fn(\"15\"),Fn(\"500\"),\"abc~\",False,False,\"\",\"\"\n"
                                        "Say Fn(\"1\"),Fn(\"1\"),\"sigue\"\nFinDocumento\n");
    std::vector<Incidencia> incidencias;
    OpcionesDeReproduccion o;
    o.alIncidir = [&](const Incidencia& i) { incidencias.push_back(i); };
    ResultadoDeReproduccion r;
    EXPECT_EQ(Imprime(archivo, o, &r).size(), 1u);
    EXPECT_TRUE(QFile::exists(victima));
    EXPECT_EQ(r.malFormadas, 5);
    ASSERT_EQ(incidencias.size(), 6u);
    EXPECT_EQ(incidencias.back().tipo, Incidencia::Tipo::Aviso);
    EXPECT_EQ(incidencias.back().renglon, 7);

    // Strictly, the first bad line stops it and nothing comes out.
    o.estricto = true;
    EXPECT_TRUE(Imprime(archivo, o, &r).empty());
    EXPECT_TRUE(r.abortada);
}

TEST(ReproduccionDeGuion, PapelYOrientacionSeRespetanAunEnUnaPaginaSola) {
    QTemporaryDir dir;
    // A sheet changed on a page takes effect from the next one.
    const QString archivo = Escribe(dir.filePath(u"papel.txt"_s),
                                    "LandScape\nIniciaDocumento\nSay Fn(\"1\"),Fn(\"1\"),\"uno\"\nPaginaNueva\n"
                                    "Portrait\nPaperSize Fn(\"256\"),Fn(\"4\"),Fn(\"6\")\nPaginaNueva\n"
                                    "Say Fn(\"1\"),Fn(\"1\"),\"tres\"\nFinDocumento\n");
    const QSize carta(11 * kPpp, qRound(8.5 * kPpp)), chica(4 * kPpp, 6 * kPpp);
    const std::pair<std::vector<std::pair<int, int>>, std::vector<QSize>> casos[] = {
        {{}, {carta, carta, chica}},
        {{{3, 3}}, {chica}},
        {{{2, 2}}, {carta}},
    };
    for (const auto& [rangos, tamanos] : casos) {
        OpcionesDeReproduccion o;
        o.seleccion.rangos = rangos;
        const Paginas paginas = Imprime(archivo, o);
        ASSERT_EQ(paginas.size(), tamanos.size());
        for (size_t i = 0; i < paginas.size(); ++i) EXPECT_EQ(paginas[i].size(), tamanos[i]) << i;
    }
}

TEST(ReproduccionDeGuion, ListasDePaginas) {
    using R = std::vector<std::pair<int, int>>;
    const std::pair<const char16_t*, std::optional<R>> casos[] = {
        {u"1, 4,7-9", R{{1, 1}, {4, 4}, {7, 9}}},
        {u"10-", R{{10, INT32_MAX}}},
        {u"0", std::nullopt},
        {u"5-2", std::nullopt},
        {u"1,,2", std::nullopt},
        {u"-3", std::nullopt},
    };
    for (const auto& [texto, esperado] : casos)
        EXPECT_EQ(LeeRangosDePaginas(QString::fromUtf16(texto)), esperado) << QString::fromUtf16(texto).toStdString();
}

}  // namespace
