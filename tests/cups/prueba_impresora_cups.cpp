// The printer object against a private print server (servidor_cups.sh): the
// destinations it lists, jobs that reach a queue with their pages, sheet and
// copies, and the PDF default when there is no destination at all.
//
// Run as its own program, because the print client library reads
// CUPS_SERVER once: "--sin-servidor" points it at a port where nothing
// listens and runs only the SinServidor tests; without it a private server
// with two queues is started for the Cups tests.

#include <sys/socket.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <cstring>
#include <gtest/gtest.h>

#include "comun/lectura_de_barras.h"
#include "comun/utilerias_de_prueba.h"
#include "cups/herramientas_pdf.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "target/impresora_sistema.h"
#include "target/modulo4.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using namespace kalo::prueba;

namespace {

bool sinServidor = false;

// A loopback port with nothing listening on it.
int PuertoSinServidor() {
    const int s = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in d{};
    d.sin_family = AF_INET;
    d.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t largo = sizeof d;
    int puerto = 1;
    if (bind(s, reinterpret_cast<sockaddr*>(&d), sizeof d) == 0 &&
        getsockname(s, reinterpret_cast<sockaddr*>(&d), &largo) == 0)
        puerto = ntohs(d.sin_port);
    close(s);
    return puerto;
}

class ServidorPrivado : public ::testing::Environment {
public:
    static inline QString carpeta;

    void SetUp() override {
        qunsetenv("PRINTER");
        qunsetenv("LPDEST");
        ASSERT_TRUE(dir_.isValid());
        carpeta = dir_.path();
        if (sinServidor) {
            qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(PuertoSinServidor()));
            qputenv("KALO_CARPETA_DE_IMPRESOS", QFile::encodeName(dir_.filePath(u"impresos"_s)));
            return;
        }
        bool ok = false;
        const QString servidor = Script({u"inicia"_s, carpeta, QString::number(QCoreApplication::applicationPid())},
                                        &ok)
                                     .trimmed();
        ASSERT_TRUE(ok && !servidor.isEmpty()) << "no arrancó el servidor de impresión privado";
        iniciado_ = true;
        Script({u"cola"_s, carpeta, u"Kalo"_s, u"predeterminada"_s, QStringLiteral(KALO_PPD_DE_PRUEBA)}, &ok);
        ASSERT_TRUE(ok);
        Script({u"cola"_s, carpeta, u"Otra"_s}, &ok);
        ASSERT_TRUE(ok);
        qputenv("CUPS_SERVER", servidor.toLocal8Bit());
    }

    void TearDown() override {
        EstableceImpresoraActual(nullptr);
        if (iniciado_) Script({u"detiene"_s, carpeta});
    }

private:
    static QString Script(QStringList argumentos, bool* ok = nullptr) {
        argumentos.prepend(QStringLiteral(KALO_SCRIPT_CUPS));
        return Ejecuta(u"bash"_s, argumentos, ok);
    }

    QTemporaryDir dir_;
    bool iniciado_ = false;
};

// The file the queue's backend wrote for a job, once it is whole.
QString EsperaTrabajo(int32_t trabajo, const QString& extension = u"pdf"_s) {
    const QString ruta =
        QDir(ServidorPrivado::carpeta).filePath(u"trabajos/trabajo-%1.%2"_s.arg(trabajo).arg(extension));
    for (int i = 0; i < 1500 && !QFile::exists(ruta); ++i) QThread::msleep(20);
    return QFile::exists(ruta) ? ruta : QString();
}

QString LeeTexto(const QString& ruta) {
    QFile f(ruta);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

class Cups : public ::testing::Test {
protected:
    void SetUp() override {
        if (sinServidor) GTEST_SKIP() << "sin servidor de impresión";
        // A fresh object for the default destination, whatever earlier tests set.
        EstableceImpresoraActual(nullptr);
        impresora = std::dynamic_pointer_cast<ImpresoraDelSistema>(ImpresoraActual());
        ASSERT_TRUE(impresora);
    }

    std::shared_ptr<ImpresoraDelSistema> impresora;
};

TEST_F(Cups, LaColeccionListaCadaDestino) {
    auto impresoras = ColeccionDeImpresoras();
    ASSERT_EQ(CLng(impresoras->Lee(u"Count"_s)), 2);
    QStringList nombres;
    for (int32_t i = 0; i < 2; ++i) {
        auto impresora = impresoras->Llama(u"Item"_s, {i}).objeto();
        ASSERT_TRUE(impresora);
        nombres << impresora->Lee(u"DeviceName"_s).texto();
        // Item is the default member, and the same index gives the same object.
        Variant indice[] = {i};
        EXPECT_EQ(impresoras->Invoca(kDispidValor, Llamada::Metodo, indice).objeto(), impresora);
    }
    nombres.sort();
    EXPECT_EQ(nombres, (QStringList{u"Kalo"_s, u"Otra"_s}));
    for (int32_t fuera : {-1, 2})
        EXPECT_EQ(NumeroDeError([&] { impresoras->Llama(u"Item"_s, {fuera}); }), err::kSubindiceFueraDeIntervalo);
    EXPECT_EQ(NumeroDeError([&] { impresoras->Asigna(u"Count"_s, 3); }), err::kNoAdmitePropiedadOMetodo);
}

TEST_F(Cups, LaImpresoraActualEsLaPredeterminada) {
    EXPECT_EQ(impresora->DeviceName(), u"Kalo"_s);
    // Created once and kept.
    EXPECT_EQ(ImpresoraActual(), impresora);
}

TEST_F(Cups, AreaImprimibleYHojaDelDestino) {
    Objeto& o = *impresora;
    // The queue's description: Letter printable a quarter inch in from every
    // edge, A4 printable from 18 to 577 by 18 to 824 points.
    EXPECT_EQ(CInt(o.Lee(u"PaperSize"_s)), 1);
    EXPECT_EQ(CLng(o.Lee(u"Width"_s)), 12240);
    EXPECT_EQ(CLng(o.Lee(u"Height"_s)), 15840);
    o.Asigna(u"ScaleMode"_s, int16_t{5});
    EXPECT_NEAR(CDbl(o.Lee(u"ScaleWidth"_s)), 8.0, 1e-3);
    EXPECT_NEAR(CDbl(o.Lee(u"ScaleHeight"_s)), 10.5, 1e-3);

    o.Asigna(u"PaperSize"_s, int16_t{9});
    EXPECT_EQ(CInt(o.Lee(u"PaperSize"_s)), 9);
    EXPECT_EQ(CLng(o.Lee(u"Width"_s)), 11906);
    EXPECT_EQ(CLng(o.Lee(u"Height"_s)), 16838);
    EXPECT_NEAR(CDbl(o.Lee(u"ScaleWidth"_s)), (577.0 - 18) / 72, 2e-3);
    EXPECT_NEAR(CDbl(o.Lee(u"ScaleHeight"_s)), (824.0 - 18) / 72, 2e-3);
}

TEST_F(Cups, DocumentoDeTresPaginasEnUnSoloTrabajo) {
    Objeto& o = *impresora;
    o.Asigna(u"ScaleMode"_s, int16_t{5});
    o.Llama(u"Print"_s, {u"uno"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"Print"_s, {u"dos"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"Print"_s, {u"tres"_s});
    // Nothing reaches the server until the job ends.
    const int32_t antes = impresora->UltimoTrabajo();
    o.Llama(u"EndDoc"_s);
    const int32_t trabajo = impresora->UltimoTrabajo();
    ASSERT_GT(trabajo, antes);

    const QString pdf = EsperaTrabajo(trabajo);
    ASSERT_FALSE(pdf.isEmpty()) << "el trabajo " << trabajo << " no llegó a la cola";
    const auto datos = LeePdf(pdf);
    ASSERT_TRUE(datos.legible);
    EXPECT_EQ(datos.paginas, 3);
    for (const QSizeF& t : datos.tamanos) EXPECT_EQ(t, QSizeF(612, 792));
}

// The whole way a host prints barcodes: Impresora on the queue, the job's
// PDF rasterised as a scanner would see the paper, read back with zbar.
TEST_F(Cups, LosCodigosDeBarrasImpresosSeLeen) {
    modulo4::Estado() = {};
    Impresora imp;
    imp.IniciaDocumento();
    imp.Codigo39(1440, 1440, 15, 900, u"ABC-12"_s, true, 1);
    imp.BarEAN13(60, u"750100000001"_s, 1, 3, 3, 1.2);
    imp.Bar128(60, u"Pedido 4512"_s, 1, 5, 4, 1.2);
    imp.FinDocumento();
    const QString pdf = EsperaTrabajo(impresora->UltimoTrabajo());
    ASSERT_FALSE(pdf.isEmpty());
    auto lecturas = Lee(PaginaComoImagen(pdf, 1, 300));
    std::sort(lecturas.begin(), lecturas.end());
    const std::vector<Lectura> esperadas = {
        {zbar::ZBAR_EAN13, "7501000000012"}, {zbar::ZBAR_CODE39, "ABC-12T"}, {zbar::ZBAR_CODE128, "Pedido 4512"}};
    auto ordenadas = esperadas;
    std::sort(ordenadas.begin(), ordenadas.end());
    EXPECT_EQ(lecturas, ordenadas);
    modulo4::Estado() = {};
}

TEST_F(Cups, LasCopiasYLaHojaLleganAlTrabajo) {
    Objeto& o = *impresora;
    o.Asigna(u"Copies"_s, 3);
    o.Asigna(u"PaperSize"_s, int16_t{5});
    o.Llama(u"Print"_s, {u"legal"_s});
    o.Llama(u"EndDoc"_s);
    const int32_t trabajo = impresora->UltimoTrabajo();
    ASSERT_FALSE(EsperaTrabajo(trabajo).isEmpty());
    const QString atributos = LeeTexto(EsperaTrabajo(trabajo, u"txt"_s));
    EXPECT_TRUE(atributos.contains(u"copias=3\n"_s)) << atributos.toStdString();
    EXPECT_TRUE(atributos.contains(u"media=Legal"_s)) << atributos.toStdString();
    const auto datos = LeePdf(EsperaTrabajo(trabajo));
    ASSERT_EQ(datos.tamanos.size(), 1u);
    EXPECT_EQ(datos.tamanos[0], QSizeF(612, 1008));
}

TEST_F(Cups, KillDocNoEnviaNada) {
    Objeto& o = *impresora;
    o.Llama(u"Print"_s, {u"primero"_s});
    o.Llama(u"EndDoc"_s);
    const int32_t primero = impresora->UltimoTrabajo();
    o.Llama(u"Print"_s, {u"descartado"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);
    o.Llama(u"Print"_s, {u"segundo"_s});
    o.Llama(u"EndDoc"_s);
    // The server numbers jobs in sequence: the killed one never got a number.
    EXPECT_EQ(impresora->UltimoTrabajo(), primero + 1);
    const QString pdf = EsperaTrabajo(primero + 1);
    ASSERT_FALSE(pdf.isEmpty());
    EXPECT_EQ(LeePdf(pdf).paginas, 1);
}

TEST_F(Cups, ElOrigenEsLaEsquinaDelAreaImprimible) {
    Objeto& o = *impresora;
    o.Asigna(u"ScaleMode"_s, int16_t{5});
    o.Llama(u"Line"_s, {int16_t{38}, 0.0, 0.0, 0.5, 0.5, 0});
    o.Llama(u"EndDoc"_s);
    const QString pdf = EsperaTrabajo(impresora->UltimoTrabajo());
    ASSERT_FALSE(pdf.isEmpty());
    const QImage pagina = PaginaComoImagen(pdf, 1, 72);
    ASSERT_EQ(pagina.size(), QSize(612, 792));
    // The box covers 18..54 points: inside the printable area, not the sheet's corner.
    EXPECT_FALSE(HayTinta(pagina, 9, 9));
    EXPECT_TRUE(HayTinta(pagina, 20, 20));
    EXPECT_TRUE(HayTinta(pagina, 52, 52));
    EXPECT_FALSE(HayTinta(pagina, 60, 60));
}

// A raw queue, and a document of only new pages: each one is still a page.
TEST_F(Cups, ColaSinDescripcionYSoloPaginasNuevas) {
    auto impresoras = ColeccionDeImpresoras();
    std::shared_ptr<ImpresoraDelSistema> otra;
    for (int32_t i = 0; i < CLng(impresoras->Lee(u"Count"_s)); ++i) {
        auto candidata = std::dynamic_pointer_cast<ImpresoraDelSistema>(impresoras->Llama(u"Item"_s, {i}).objeto());
        if (candidata && candidata->DeviceName() == u"Otra"_s) otra = candidata;
    }
    ASSERT_TRUE(otra);
    otra->Llama(u"NewPage"_s);
    otra->Llama(u"NewPage"_s);
    otra->Llama(u"EndDoc"_s);
    const QString pdf = EsperaTrabajo(otra->UltimoTrabajo());
    ASSERT_FALSE(pdf.isEmpty());
    EXPECT_EQ(LeePdf(pdf).paginas, 3);
}

class SinServidor : public ::testing::Test {
protected:
    void SetUp() override {
        if (!sinServidor) GTEST_SKIP() << "solo con --sin-servidor";
    }
};

TEST_F(SinServidor, LaSalidaVaAUnPdf) {
    EXPECT_EQ(CLng(ColeccionDeImpresoras()->Lee(u"Count"_s)), 0);
    EstableceImpresoraActual(nullptr);
    auto actual = ImpresoraActual();
    ASSERT_TRUE(actual);
    EXPECT_EQ(actual->Lee(u"DeviceName"_s).texto(), u"PDF (KaloImpresora)"_s);
    actual->Llama(u"Print"_s, {u"uno"_s});
    actual->Llama(u"NewPage"_s);
    actual->Llama(u"Print"_s, {u"dos"_s});
    actual->Llama(u"EndDoc"_s);
    const QString archivo = actual->Lee(u"ArchivoDeSalida"_s).texto();
    EXPECT_EQ(QFileInfo(archivo).absolutePath(), QDir(ServidorPrivado::carpeta).filePath(u"impresos"_s));
    const auto datos = LeePdf(archivo);
    ASSERT_TRUE(datos.legible);
    EXPECT_EQ(datos.paginas, 2);
    EXPECT_EQ(datos.tamanos.front(), QSizeF(612, 792));
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--sin-servidor") == 0) {
            sinServidor = true;
            std::copy(argv + i + 1, argv + argc, argv + i);
            --argc;
            break;
        }
    }
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new ServidorPrivado);
    return RUN_ALL_TESTS();
}
