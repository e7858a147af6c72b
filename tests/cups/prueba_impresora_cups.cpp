// The printer object against a private print server (servidor_cups.sh): the
// destinations it lists, jobs that reach a queue with their pages, sheet and
// copies, and the PDF default when there is no destination at all.
//
// Run as its own program, because the print client library reads
// CUPS_SERVER once: "--sin-servidor" points it at a port where nothing
// listens and runs only the SinServidor tests; without it the private server
// is started for the other tests.

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <cstring>
#include <gtest/gtest.h>

#include "comun/herramientas_pdf.h"
#include "comun/lectura_de_barras.h"
#include "comun/utilerias_de_prueba.h"
#include "cups/servidor_privado.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "target/impresora_sistema.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using namespace kalo::prueba;

namespace {

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

// Every destination, made once per index, in the print server's order; the
// default one is the current printer. "Otra" is a raw queue: a document of
// only new pages still has them.
TEST_F(Cups, LaColeccionListaCadaDestino) {
    EXPECT_EQ(impresora->DeviceName(), u"Kalo"_s);
    EXPECT_EQ(ImpresoraActual(), impresora);
    auto impresoras = ColeccionDeImpresoras();
    ASSERT_EQ(CLng(impresoras->Lee(u"Count"_s)), 3);
    QStringList nombres;
    for (int32_t i = 0; i < 3; ++i) {
        auto otra = std::dynamic_pointer_cast<ImpresoraDelSistema>(impresoras->Llama(u"Item"_s, {i}).objeto());
        ASSERT_TRUE(otra);
        nombres << otra->DeviceName();
        // Item is the default member, and the same index gives the same object.
        Variant indice[] = {i};
        EXPECT_EQ(impresoras->Invoca(kDispidValor, Llamada::Metodo, indice).objeto(), otra);
        if (otra->DeviceName() != u"Otra"_s) continue;
        otra->Llama(u"NewPage"_s);
        otra->Llama(u"NewPage"_s);
        otra->Llama(u"EndDoc"_s);
        const QString pdf = EsperaTrabajo(otra->UltimoTrabajo());
        ASSERT_FALSE(pdf.isEmpty());
        EXPECT_EQ(LeePdf(pdf).paginas, 3);
    }
    EXPECT_EQ(nombres, (QStringList{u"Kalo"_s, u"Otra"_s, u"PDF"_s}));
    for (int32_t fuera : {-1, 3})
        EXPECT_EQ(NumeroDeError([&] { impresoras->Llama(u"Item"_s, {fuera}); }), err::kSubindiceFueraDeIntervalo);
    EXPECT_EQ(NumeroDeError([&] { impresoras->Asigna(u"Count"_s, 3); }), err::kNoAdmitePropiedadOMetodo);
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

// Nothing reaches the server until a job ends; a killed one never gets a
// number (the server numbers jobs in sequence); copies and sheet go with it.
TEST_F(Cups, LosTrabajosLleganALaColaConSusPaginasHojaYCopias) {
    Objeto& o = *impresora;
    o.Asigna(u"ScaleMode"_s, int16_t{5});
    o.Llama(u"Line"_s, {int16_t{38}, 0.0, 0.0, 0.5, 0.5, 0});
    for (const QString& texto : {u"uno"_s, u"dos"_s, u"tres"_s}) {
        if (texto != u"uno"_s) o.Llama(u"NewPage"_s);
        o.Llama(u"Print"_s, {texto});
    }
    EXPECT_EQ(impresora->UltimoTrabajo(), 0);
    o.Llama(u"EndDoc"_s);
    const int32_t trabajo = impresora->UltimoTrabajo();
    ASSERT_GT(trabajo, 0);
    QString pdf = EsperaTrabajo(trabajo);
    ASSERT_FALSE(pdf.isEmpty()) << "el trabajo " << trabajo << " no llegó a la cola";
    auto datos = LeePdf(pdf);
    EXPECT_EQ(datos.paginas, 3);
    EXPECT_EQ(datos.tamanos, std::vector<QSizeF>(3, QSizeF(612, 792)));
    // The box covers 18..54 points: inside the printable area, not the sheet's
    // corner. "uno" starts where the box ends, so past it look beside the text.
    const QImage pagina = PaginaComoImagen(pdf, 1, 72);
    ASSERT_EQ(pagina.size(), QSize(612, 792));
    struct Punto {
        int x, y;
        bool tinta;
    };
    for (auto [x, y, tinta] : {Punto{9, 9, false}, Punto{20, 20, true}, Punto{52, 52, true}, Punto{60, 30, false},
                               Punto{30, 60, false}})
        EXPECT_EQ(HayTinta(pagina, x, y), tinta) << x << ',' << y;

    o.Llama(u"Print"_s, {u"descartado"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);

    o.Asigna(u"Copies"_s, 3);
    o.Asigna(u"PaperSize"_s, int16_t{5});
    o.Llama(u"Print"_s, {u"legal"_s});
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(impresora->UltimoTrabajo(), trabajo + 1);
    pdf = EsperaTrabajo(trabajo + 1);
    ASSERT_FALSE(pdf.isEmpty());
    QFile txt(EsperaTrabajo(trabajo + 1, u"txt"_s));
    EXPECT_TRUE(txt.open(QIODevice::ReadOnly));
    const QString atributos = QString::fromUtf8(txt.readAll());
    EXPECT_TRUE(atributos.contains(u"copias=3\n"_s)) << atributos.toStdString();
    EXPECT_TRUE(atributos.contains(u"media=Legal"_s)) << atributos.toStdString();
    EXPECT_EQ(LeePdf(pdf).tamanos, std::vector<QSizeF>{QSizeF(612, 1008)});
}

// The whole way a host prints barcodes: Impresora on the queue, the job's
// PDF rasterised as a scanner would see the paper, read back with zbar.
TEST_F(Cups, LosCodigosDeBarrasImpresosSeLeen) {
    Impresora imp;
    imp.IniciaDocumento();
    imp.Codigo39(1440, 1440, 15, 900, u"ABC-12"_s, true, 1);
    imp.BarEAN13(60, u"750100000001"_s, 1, 3, 3, 1.2);
    imp.Bar128(60, u"Pedido 4512"_s, 1, 5, 4, 1.2);
    imp.FinDocumento();
    const QString pdf = EsperaTrabajo(impresora->UltimoTrabajo());
    ASSERT_FALSE(pdf.isEmpty());
    auto lecturas = Lee(PaginaComoImagen(pdf, 1, 300));
    std::vector<Lectura> esperadas = {
        {zbar::ZBAR_EAN13, "7501000000012"}, {zbar::ZBAR_CODE39, "ABC-12T"}, {zbar::ZBAR_CODE128, "Pedido 4512"}};
    std::sort(lecturas.begin(), lecturas.end());
    std::sort(esperadas.begin(), esperadas.end());
    EXPECT_EQ(lecturas, esperadas);
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
