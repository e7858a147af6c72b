// Replay: a recorded document printed again must look exactly as the
// document printed directly, whole or a page at a time.

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTextStream>
#include <gtest/gtest.h>

#include "comun/objeto_grabador.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "spool/conexion.h"
#include "spool/reproduccion.h"
#include "target/impresora_de_imagenes.h"
#include "target/modulo4.h"

using namespace kalo;
using namespace Qt::StringLiterals;

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

class Reproduccion : public ::testing::Test {
protected:
    void SetUp() override {
        modulo4::Estado() = {};
        // Printed straight to images.
        {
            Impresora directa;
            EstableceImpresoraActual(ImpresoraQueJunta(directas));
            DocumentoDePrueba(directa);
            EstableceImpresoraActual(nullptr);
        }
        // Shown on a preview and recorded.
        modulo4::Estado() = {};
        grabadora.Imagen2 = std::make_shared<prueba::ObjetoGrabador>();
        grabadora.Pantalla = true;
        grabadora.Archivo = true;
        DocumentoDePrueba(grabadora);
        reporte = grabadora.DB;
        modulo4::Estado() = {};
    }
    void TearDown() override {
        grabadora.sq = nullptr;
        for (const char* s : {"", "-wal", "-shm"}) QFile::remove(reporte + QString::fromLatin1(s));
    }

    Paginas Reproduce_(const SeleccionDePaginas& s, ResultadoDeReproduccion* r = nullptr,
                       std::vector<Incidencia>* incidencias = nullptr, const QString& archivo = {}) {
        Paginas paginas;
        OpcionesDeReproduccion o;
        o.seleccion = s;
        o.alIncidir = [&](const Incidencia& i) {
            if (incidencias) incidencias->push_back(i);
        };
        auto fuente = AbreGuion(archivo.isEmpty() ? reporte : archivo);
        const ResultadoDeReproduccion res = Reproduce(*fuente, ImpresoraQueJunta(paginas), o);
        if (r) *r = res;
        return paginas;
    }

    Impresora grabadora;
    QString reporte;
    Paginas directas;
};

TEST_F(Reproduccion, ElReporteSeImprimeIgualQueElDocumentoDirecto) {
    ASSERT_EQ(directas.size(), 3u);
    ResultadoDeReproduccion r;
    const Paginas repetidas = Reproduce_({}, &r);
    ASSERT_EQ(repetidas.size(), 3u);
    EXPECT_EQ(r.paginasEmitidas, 3);
    EXPECT_EQ(r.malFormadas, 0);
    EXPECT_EQ(r.errores, 0);
    for (size_t i = 0; i < 3; ++i) EXPECT_TRUE(repetidas[i] == directas[i]) << "página " << i + 1;
}

TEST_F(Reproduccion, UnaPaginaSolaConservaElEstadoDeLasAnteriores) {
    struct Caso {
        std::vector<std::pair<int, int>> rangos;
        std::vector<size_t> esperadas;  // indices into the direct pages
    } casos[] = {
        {{{3, 3}}, {2}},
        {{{2, INT32_MAX}}, {1, 2}},
        {{{1, 1}, {3, 3}}, {0, 2}},
    };
    for (const Caso& c : casos) {
        SeleccionDePaginas s;
        s.rangos = c.rangos;
        const Paginas p = Reproduce_(s);
        ASSERT_EQ(p.size(), c.esperadas.size()) << c.rangos.front().first;
        for (size_t i = 0; i < p.size(); ++i)
            EXPECT_TRUE(p[i] == directas[c.esperadas[i]]) << "desde " << c.rangos.front().first << ", salida " << i;
    }
}

TEST_F(Reproduccion, LaNegritaGrabadaComoFalseSaleNegrita) {
    // The same document with FontBold taken literally from its text.
    QTemporaryDir dir;
    const QString guion = dir.filePath(u"literal.txt"_s);
    {
        Paginas paginas;
        LineaDeGuion l;
        auto fuente = AbreGuion(reporte);
        QFile f(guion);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        while (fuente->Siguiente(l)) f.write(l.texto.toUtf8());
    }
    const Paginas literales = Reproduce_({}, nullptr, nullptr, guion);
    ASSERT_EQ(literales.size(), 3u);
    EXPECT_FALSE(literales[0] == directas[0]) << "el texto del comando no basta para la negrita";
}

TEST(ReproduccionDeGuion, VariosDocumentosSonVariosYSeEligenPorNumero) {
    QTemporaryDir dir;
    const QString archivo = dir.filePath(u"dos.txt"_s);
    QFile f(archivo);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("IniciaDocumento\r\nSay Fn(\"1\"),Fn(\"1\"),\"uno\"\r\nPaginaNueva\r\nFinDocumento\r\n"
            "ColorDeFuente 255\r\n"
            "IniciaDocumento\nSay Fn(\"1\"),Fn(\"1\"),\"dos\"\nFinDocumento\n");
    f.close();

    const ResumenDeGuion resumen = Resume(*AbreGuion(archivo));
    EXPECT_EQ(resumen.paginasPorDocumento, (std::vector<int>{2, 1}));
    EXPECT_EQ(resumen.comandos, 8);

    Paginas todas, segundo;
    Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(todas), {});
    OpcionesDeReproduccion o;
    o.seleccion.documento = 2;
    const ResultadoDeReproduccion r = Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(segundo), o);
    ASSERT_EQ(todas.size(), 3u);
    ASSERT_EQ(segundo.size(), 1u);
    EXPECT_EQ(r.paginasEmitidas, 1);
    EXPECT_TRUE(segundo[0] == todas[2]);
    EXPECT_FALSE(todas[0] == todas[2]);
}

TEST(ReproduccionDeGuion, ComandosAjenosSeRechazanSinTocarNada) {
    QTemporaryDir dir;
    const QString victima = dir.filePath(u"victima.txt"_s);
    QFile(victima).open(QIODevice::WriteOnly);
    const QString archivo = dir.filePath(u"ajeno.txt"_s);
    QFile f(archivo);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    QTextStream t(&f);
    t << "IniciaDocumento\n"
      << "strTemp \"" << victima << "\"\n"
      << "BorraArchivo\n"
      << "AbrirCajonDeDinero\n"
      << "CreaBaseDeDatos\n"
      << "RangoDeFechas\n"
      << "Say Fn(\"1\"),Fn(\"1\"),\"sigue\"\n"
      << "Say Fn(\"1\"),\"x\"\n"
      << "FinDocumento\n";
    t.flush();
    f.close();

    std::vector<Incidencia> incidencias;
    OpcionesDeReproduccion o;
    o.alIncidir = [&](const Incidencia& i) { incidencias.push_back(i); };
    Paginas paginas;
    const ResultadoDeReproduccion r = Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(paginas), o);
    EXPECT_TRUE(QFile::exists(victima));
    EXPECT_EQ(r.malFormadas, 6);
    ASSERT_EQ(incidencias.size(), 6u);
    EXPECT_EQ(incidencias[0].renglon, 2);
    EXPECT_EQ(incidencias[0].documento, 1);
    EXPECT_EQ(incidencias[0].pagina, 1);
    EXPECT_TRUE(incidencias[2].mensaje.contains(u"AbrirCajonDeDinero"_s)) << incidencias[2].mensaje.toStdString();
    EXPECT_EQ(incidencias[5].renglon, 8);
    EXPECT_EQ(paginas.size(), 1u);

    // Strictly, the first bad line stops it and nothing comes out.
    o.estricto = true;
    paginas.clear();
    const ResultadoDeReproduccion estricta = Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(paginas), o);
    EXPECT_TRUE(estricta.abortada);
    EXPECT_TRUE(paginas.empty());
}

TEST(ReproduccionDeGuion, UnMensajeDelComponenteSeVuelveAvisoSinDetenerse) {
    QTemporaryDir dir;
    const QString archivo = dir.filePath(u"barras.txt"_s);
    QFile f(archivo);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("IniciaDocumento\n"
            "Codigo39 Fn(\"100\"),Fn(\"100\"),Fn(\"15\"),Fn(\"500\"),\"abc~\",False,False,\"\",\"\"\n"
            "Say Fn(\"1\"),Fn(\"1\"),\"despues\"\n"
            "FinDocumento\n");
    f.close();
    std::vector<Incidencia> avisos;
    OpcionesDeReproduccion o;
    o.alIncidir = [&](const Incidencia& i) { avisos.push_back(i); };
    Paginas paginas;
    Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(paginas), o);
    ASSERT_EQ(avisos.size(), 1u);
    EXPECT_EQ(avisos[0].tipo, Incidencia::Tipo::Aviso);
    EXPECT_EQ(avisos[0].renglon, 2);
    EXPECT_EQ(paginas.size(), 1u);
}

TEST(ReproduccionDeGuion, ArchivosQueNoSonGuionSeNombranConSuError) {
    QTemporaryDir dir;
    const QString binario = dir.filePath(u"logo.png"_s);
    QImage(4, 4, QImage::Format_RGB32).save(binario);
    const QString sinTabla = dir.filePath(u"otra.rep"_s);
    {
        ConexionDeReporte c;
        c.Abre(sinTabla);
        c.Ejecuta(u"CREATE TABLE otra( x INTEGER )"_s);
    }
    struct Caso {
        QString archivo;
        int32_t error;
    } casos[] = {
        {dir.filePath(u"no-existe.rep"_s), err::kArchivoNoEncontrado},
        {binario, kErrorDeBaseDeDatos},
        {sinTabla, kErrorDeBaseDeDatos},
    };
    for (const Caso& c : casos) {
        try {
            auto fuente = AbreGuion(c.archivo);
            Resume(*fuente);
            ADD_FAILURE() << "sin error: " << c.archivo.toStdString();
        } catch (const ErrorDeAutomatizacion& e) {
            EXPECT_EQ(e.numero(), c.error) << c.archivo.toStdString();
            EXPECT_TRUE(e.descripcion().contains(c.archivo)) << e.descripcion().toStdString();
        }
    }
}

TEST(ReproduccionDeGuion, PapelYOrientacionSeRespetanAunEnUnaPaginaSola) {
    QTemporaryDir dir;
    const QString archivo = dir.filePath(u"papel.txt"_s);
    QFile f(archivo);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    // A sheet changed on a page takes effect from the next one.
    f.write("LandScape\nIniciaDocumento\nSay Fn(\"1\"),Fn(\"1\"),\"uno\"\nPaginaNueva\nPortrait\n"
            "PaperSize Fn(\"256\"),Fn(\"4\"),Fn(\"6\")\nPaginaNueva\nSay Fn(\"1\"),Fn(\"1\"),\"tres\"\nFinDocumento\n");
    f.close();
    const QSize carta(11 * kPpp, qRound(8.5 * kPpp)), chica(4 * kPpp, 6 * kPpp);
    struct Caso {
        std::vector<std::pair<int, int>> rangos;
        std::vector<QSize> tamanos;
    } casos[] = {
        {{}, {carta, carta, chica}},
        {{{3, 3}}, {chica}},
        {{{2, 2}}, {carta}},
    };
    for (const Caso& c : casos) {
        Paginas paginas;
        OpcionesDeReproduccion o;
        o.seleccion.rangos = c.rangos;
        Reproduce(*AbreGuion(archivo), ImpresoraQueJunta(paginas), o);
        ASSERT_EQ(paginas.size(), c.tamanos.size());
        for (size_t i = 0; i < paginas.size(); ++i) EXPECT_EQ(paginas[i].size(), c.tamanos[i]) << i;
    }
}

TEST(ReproduccionDeGuion, ListasDePaginas) {
    using R = std::vector<std::pair<int, int>>;
    struct Caso {
        const char16_t* texto;
        std::optional<R> esperado;
    } casos[] = {
        {u"3", R{{3, 3}}},
        {u"2-5", R{{2, 5}}},
        {u"1, 4,7-9", R{{1, 1}, {4, 4}, {7, 9}}},
        {u"10-", R{{10, INT32_MAX}}},
        {u"0", std::nullopt},
        {u"5-2", std::nullopt},
        {u"a", std::nullopt},
        {u"", std::nullopt},
        {u"1,,2", std::nullopt},
        {u"-3", std::nullopt},
    };
    for (const Caso& c : casos)
        EXPECT_EQ(LeeRangosDePaginas(QString::fromUtf16(c.texto)), c.esperado) << QString::fromUtf16(c.texto).toStdString();
}

}  // namespace
