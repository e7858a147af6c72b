// Forms, printer selection and the cash drawer against the private print
// server: what libcups, lpoptions and a new process see of the forms, the
// sheet each job comes out on, the queue it goes to, and the drawer's bytes
// as a raw job.

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

#include "comun/herramientas_pdf.h"
#include "cups/servidor_privado.h"
#include "kaloimpresora/impresora.h"
#include "target/impresora_sistema.h"

using namespace kalo;
using namespace kalo::prueba;
using namespace Qt::StringLiterals;

namespace {

// The media saved for a destination instance, as libcups gives it to any
// program; empty when there is no such instance.
QString MedioDe(const char* cola, const QString& instancia) {
    cups_dest_t* lista = nullptr;
    const int n = cupsGetDests2(CUPS_HTTP_DEFAULT, &lista);
    const cups_dest_t* d = cupsGetDest(cola, instancia.toUtf8().constData(), n, lista);
    const QString medio = d ? QString::fromUtf8(cupsGetOption("media", d->num_options, d->options)) : QString();
    cupsFreeDests(n, lista);
    return medio;
}

QString Herramienta(const QStringList& args, int* codigo = nullptr) {
    QProcess p;
    p.start(QString::fromUtf8(KALO_HERRAMIENTA), args);
    EXPECT_TRUE(p.waitForFinished(30000));
    if (codigo) *codigo = p.exitCode();
    return QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError());
}

class Formas : public ::testing::Test {
protected:
    void SetUp() override {
        if (sinServidor) GTEST_SKIP() << "sin servidor de impresión";
        QFile::remove(ServidorPrivado::Lpoptions());  // no forms left by other tests
        EstableceImpresoraActual(nullptr);
    }

    // One page through Impresora: the job's number, once its document is whole.
    int32_t Imprime() {
        imp.IniciaDocumento();
        imp.Say(1, 1, u"x"_s);
        imp.FinDocumento();
        const auto impresora = std::dynamic_pointer_cast<ImpresoraDelSistema>(ImpresoraActual());
        const int32_t trabajo = impresora ? impresora->UltimoTrabajo() : 0;
        EXPECT_FALSE(EsperaTrabajo(trabajo).isEmpty()) << trabajo;
        return trabajo;
    }
    std::vector<QSizeF> Paginas(int32_t trabajo) { return LeePdf(EsperaTrabajo(trabajo)).tamanos; }

    Impresora imp;
};

TEST_F(Formas, CadaPapelDejaSuFormaEnElServidorYLosTrabajosSalenEnElla) {
    imp.EstableceImpresora(u"PDF"_s);
    // Code, inches and style asked for; the instance's media; the page, in
    // points. A4's printable area (7.76 x 11.19 inches) makes a form of 8 x 11.
    for (const auto& [codigo, ancho, alto, estilo, medio, pagina] :
         {std::tuple(9, 0.0, 0.0, u"Tiendanova"_s, u"Custom.203.2x279.4mm"_s, QSizeF(576, 792)),
          std::tuple(256, 4.0, 6.0, u"Tiendanova"_s, u"Custom.101.6x152.4mm"_s, QSizeF(288, 432)),
          std::tuple(256, 5.5, 7.5, u"Caja"_s, u"Custom.152.4x203.2mm"_s, QSizeF(432, 576))}) {
        SCOPED_TRACE(medio.toStdString());
        imp.PaperSize(codigo, ancho, alto, estilo);
        const QString instancia = u"PDF/Tiendanova_"_s + estilo;
        EXPECT_EQ(MedioDe("PDF", u"Tiendanova_"_s + estilo), medio);
        EXPECT_TRUE(Ejecuta(u"lpoptions"_s, {u"-p"_s, instancia}).contains(u"media="_s + medio));
        const int32_t trabajo = Imprime();
        EXPECT_EQ(UltimoTrabajoDe("PDF"), trabajo);
        EXPECT_EQ(Paginas(trabajo), std::vector<QSizeF>{pagina});
        QFile atributos(EsperaTrabajo(trabajo, u"txt"_s));
        ASSERT_TRUE(atributos.open(QIODevice::ReadOnly));
        EXPECT_TRUE(atributos.readAll().contains(("media=" + medio).toUtf8()));
    }
    imp.LandScape();
    EXPECT_EQ(Paginas(Imprime()), std::vector<QSizeF>{QSizeF(576, 432)});

    // Another program, started now, sees the forms under their printer.
    int codigo = -1;
    const QString lista = Herramienta({u"impresoras"_s}, &codigo);
    EXPECT_EQ(codigo, 0);
    EXPECT_TRUE(lista.contains(u"  PDF\n      forma Tiendanova_Caja: 152.4 x 203.2 mm\n"_s)) << lista.toStdString();
}

// A name the print server cannot hold is never added; the sheet follows the
// form named by the first 32 characters of the name, here only when that is
// the whole name. Otherwise the sheet stays as the driver was first asked:
// 6 inches from the 8-inch printable width, 9180 twips.
TEST_F(Formas, SoloSeAgreganNombresValidosYSoloSeEligenHasta32Caracteres) {
    const QString de21 = u"Mostrador_de_entrada"_s + u'X';
    for (const auto& [estilo, agregada, ancho] :
         {std::tuple(u"Caja"_s, true, 5760), std::tuple(de21 + u'X', true, 9180), std::tuple(de21, true, 5760),
          std::tuple(u"Mi caja"_s, false, 9180)}) {
        SCOPED_TRACE(estilo.toStdString());
        QFile::remove(ServidorPrivado::Lpoptions());
        imp.EstableceImpresora(u"PDF"_s);
        imp.PaperSize(256, 4, 6, estilo);
        EXPECT_EQ(MedioDe("PDF", u"Tiendanova_"_s + estilo), agregada ? u"Custom.101.6x152.4mm"_s : QString());
        EXPECT_EQ(CLng(ImpresoraActual()->Lee(u"Width"_s)), ancho);
    }
    QFile opciones(ServidorPrivado::Lpoptions());
    ASSERT_TRUE(opciones.open(QIODevice::ReadOnly));
    EXPECT_FALSE(opciones.readAll().contains("Mi"));
}

TEST_F(Formas, EstableceImpresoraEligeElDestinoExactoYLeAplicaLaForma) {
    // The argument; the printer current afterwards; whether its queue then
    // has the style's form at the sheet it had (letter).
    for (const auto& [nombre, actual, forma] :
         {std::tuple(Variant(u" PDF "_s), u"PDF"_s, true), std::tuple(Variant(u"pdf"_s), u"Kalo"_s, true),
          std::tuple(Variant(u"No existe"_s), u"Kalo"_s, true), std::tuple(Variant::Nulo(), u"Kalo"_s, false)}) {
        SCOPED_TRACE(actual.toStdString());
        QFile::remove(ServidorPrivado::Lpoptions());
        EstableceImpresoraActual(nullptr);
        imp.EstableceImpresora(nombre);
        EXPECT_EQ(ImpresoraActual()->Lee(u"DeviceName"_s).texto(), actual);
        EXPECT_EQ(MedioDe(actual.toUtf8().constData(), u"Tiendanova_Tiendanova"_s),
                  forma ? u"Custom.215.9x279.4mm"_s : QString());
    }
    // An instance is a destination too, on the sheet its media gives; later
    // documents go to its queue.
    bool ok = false;
    Ejecuta(u"lpoptions"_s, {u"-p"_s, u"Kalo/Tiendanova_Tiendanova"_s, u"-o"_s, u"media=Custom.101.6x152.4mm"_s}, &ok);
    ASSERT_TRUE(ok);
    imp.EstableceImpresora(u"Kalo/Tiendanova_Tiendanova"_s);
    EXPECT_EQ(ImpresoraActual()->Lee(u"DeviceName"_s).texto(), u"Kalo/Tiendanova_Tiendanova"_s);
    const int32_t trabajo = Imprime();
    EXPECT_EQ(UltimoTrabajoDe("Kalo"), trabajo);
    EXPECT_EQ(Paginas(trabajo), std::vector<QSizeF>{QSizeF(288, 432)});
}

TEST_F(Formas, ElCajonDeUnaColaLlegaComoTrabajoEnBruto) {
    const QString patada = u"\x1bp"_s + QChar(0) + QChar(0x19) + QChar(0xFA);
    for (const QString& puerto : {u"Otra"_s, u"\\\\caja\\Otra"_s}) {
        const int32_t antes = UltimoTrabajoDe("Otra");
        imp.AbrirCajonDeDinero(puerto, patada);
        const int32_t trabajo = UltimoTrabajoDe("Otra");
        ASSERT_GT(trabajo, antes) << puerto.toStdString();
        QFile bytes(EsperaTrabajo(trabajo));
        ASSERT_TRUE(bytes.open(QIODevice::ReadOnly));
        EXPECT_EQ(bytes.readAll(), QByteArray("\x1bp\0\x19\xfa\r\n", 7));
    }
    int codigo = -1;
    EXPECT_TRUE(Herramienta({u"cajon"_s, u"\\\\caja\\Otra"_s}, &codigo).contains(u"a la cola «Otra»"_s));
    EXPECT_EQ(codigo, 0);
    EXPECT_TRUE(Herramienta({u"cajon"_s, u"\\\\caja\\Nadie"_s}, &codigo).contains(u"No existe la cola «Nadie»"_s));
    EXPECT_EQ(codigo, 10);
}

}  // namespace
