// The printer object against a private print server (servidor_cups.sh): the
// destinations it lists, jobs that reach a queue with their pages, sheet and
// copies. Then forms, printer selection and the cash drawer: what libcups, lpoptions and
// a new process see of the forms, the sheet and queue of later jobs, the
// drawer's bytes as a raw job.
//
// Run as its own program, because the print client library reads
// CUPS_SERVER, CUPS_SERVERROOT and HOME (where the user's destinations are
// saved) once. A private server is started with the PDF queues "Kalo" (the default) and "PDF", and "Otra", raw.

#include "comun/prueba.h"

#include <cups/cups.h>
#include <QCoreApplication>
#include <QProcess>
#include <QThread>

#include "comun/herramienta.h"
#include "comun/herramientas_pdf.h"
#include "target/impresora_sistema.h"

namespace {

class ServidorPrivado : public ::testing::Environment {
public:
    static inline QString carpeta;

    void SetUp() override {
        qunsetenv("PRINTER");
        qunsetenv("LPDEST");
        ASSERT_TRUE(dir_.isValid());
        carpeta = dir_.path();
        for (const char* v : {"CUPS_SERVERROOT", "HOME"}) {
            QDir(carpeta).mkpath(QString::fromLatin1(v));
            qputenv(v, QFile::encodeName(dir_.filePath(QString::fromLatin1(v))));
        }
        bool ok = false;
        const QString servidor = Script({u"inicia"_s, carpeta, QString::number(QCoreApplication::applicationPid())},
                                        &ok)
                                     .trimmed();
        ASSERT_TRUE(ok && !servidor.isEmpty()) << "no arrancó el servidor de impresión privado";
        iniciado_ = true;
        Script({u"cola"_s, carpeta, u"Kalo"_s, u"predeterminada"_s, QStringLiteral(KALO_PPD_DE_PRUEBA)}, &ok);
        ASSERT_TRUE(ok);
        Script({u"cola"_s, carpeta, u"PDF"_s, {}, QStringLiteral(KALO_PPD_DE_PRUEBA)}, &ok);
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

class Cups : public ::testing::Test {
protected:
    void SetUp() override {
        // A fresh object for the default destination, whatever earlier tests set.
        EstableceImpresoraActual(nullptr);
        impresora = std::dynamic_pointer_cast<ImpresoraDelSistema>(ImpresoraActual());
        ASSERT_TRUE(impresora);
    }

    std::shared_ptr<ImpresoraDelSistema> impresora;
};

// Every destination, made once per index, in the server's order; the
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
    for (auto [x, y, tinta] : {
             Punto{9, 9, false},
             Punto{20, 20, true},
             Punto{52, 52, true},
             Punto{60, 30, false},
             Punto{30, 60, false},
         })
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

// ---- Forms, printer selection and the cash drawer ------------------------------

// The media saved for a destination instance, as libcups gives it to any
// program; empty when there is no such instance.
QString MedioDe(const QString& cola, const QString& instancia) {
    cups_dest_t* lista = nullptr;
    const int n = cupsGetDests2(CUPS_HTTP_DEFAULT, &lista);
    const cups_dest_t* d = cupsGetDest(cola.toUtf8().constData(), instancia.toUtf8().constData(), n, lista);
    const QString medio = d ? QString::fromUtf8(cupsGetOption("media", d->num_options, d->options)) : QString();
    cupsFreeDests(n, lista);
    return medio;
}

int32_t UltimoTrabajoDe(const char* cola) {
    cups_job_t* trabajos = nullptr;
    const int n = cupsGetJobs2(CUPS_HTTP_DEFAULT, &trabajos, cola, 0, CUPS_WHICHJOBS_ALL);
    int32_t ultimo = 0;
    for (int i = 0; i < n; ++i) ultimo = std::max(ultimo, trabajos[i].id);
    cupsFreeJobs(n, trabajos);
    return ultimo;
}

// The command, on this run's print server.
Salida Herramienta(const QStringList& args) { return CorreHerramienta(args, QProcessEnvironment::systemEnvironment()); }

class Formas : public ::testing::Test {
protected:
    void SetUp() override {
        BorraFormas();
        EstableceImpresoraActual(nullptr);
    }
    // Wherever this libcups keeps them: the home, or for root maybe the client's folder.
    static void BorraFormas() {
        for (const QString& f : {u"HOME/.cups/lpoptions"_s, u"CUPS_SERVERROOT/lpoptions"_s})
            QFile::remove(QDir(ServidorPrivado::carpeta).filePath(f));
    }

    // One page through Impresora: the job's number, once the queue has it.
    int32_t Imprime() {
        imp.IniciaDocumento();
        imp.Say(1, 1, u"x"_s);
        imp.FinDocumento();
        const auto actual = std::dynamic_pointer_cast<ImpresoraDelSistema>(ImpresoraActual());
        const int32_t trabajo = actual ? actual->UltimoTrabajo() : 0;
        EXPECT_FALSE(EsperaTrabajo(trabajo).isEmpty()) << trabajo;
        return trabajo;
    }
    static std::vector<QSizeF> Paginas(int32_t trabajo) { return LeePdf(EsperaTrabajo(trabajo)).tamanos; }

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
        EXPECT_EQ(MedioDe(u"PDF"_s, u"Tiendanova_"_s + estilo), medio);
        EXPECT_TRUE(Ejecuta(u"lpoptions"_s, {u"-p"_s, u"PDF/Tiendanova_"_s + estilo}).contains(u"media="_s + medio));
        const int32_t trabajo = Imprime();
        EXPECT_EQ(UltimoTrabajoDe("PDF"), trabajo);
        EXPECT_EQ(Paginas(trabajo), std::vector<QSizeF>{pagina});
        QFile atributos(EsperaTrabajo(trabajo, u"txt"_s));
        EXPECT_TRUE(atributos.open(QIODevice::ReadOnly) && atributos.readAll().contains("media=" + medio.toUtf8()));
    }
    imp.LandScape();
    EXPECT_EQ(Paginas(Imprime()), std::vector<QSizeF>{QSizeF(576, 432)});
    // Another program, started now, sees the forms under their printer.
    const Salida lista = Herramienta({u"impresoras"_s});
    EXPECT_EQ(lista.codigo, 0);
    EXPECT_TRUE(lista.out.contains(u"  PDF\n      forma Tiendanova_Caja: 152.4 x 203.2 mm\n"_s)) << lista.out.toStdString();
}

// A name the print server cannot hold is never added; the sheet follows the
// form named by the first 32 characters of the name, here only when that is
// the whole name. Otherwise the sheet stays as the driver was first asked:
// 6 inches from the 8-inch printable width, 9180 twips.
TEST_F(Formas, SoloSeAgreganNombresValidosYSoloSeEligenHasta32Caracteres) {
    const QString de21 = u"Mostrador_de_entrada"_s + u'X';
    for (const auto& [estilo, agregada, ancho] :
         {
             std::tuple(u"Caja"_s, true, 5760),
             std::tuple(de21 + u'X', true, 9180),
             std::tuple(de21, true, 5760),
             std::tuple(u"Mi caja"_s, false, 9180),
         }) {
        SCOPED_TRACE(estilo.toStdString());
        BorraFormas();
        imp.EstableceImpresora(u"PDF"_s);
        imp.PaperSize(256, 4, 6, estilo);
        EXPECT_EQ(MedioDe(u"PDF"_s, u"Tiendanova_"_s + estilo), agregada ? u"Custom.101.6x152.4mm"_s : QString());
        EXPECT_EQ(CLng(ImpresoraActual()->Lee(u"Width"_s)), ancho);
    }
}

TEST_F(Formas, EstableceImpresoraEligeElDestinoExactoYLeAplicaLaForma) {
    // The argument, and the printer current afterwards, whose queue then has
    // the style's form at the letter sheet it had.
    for (const auto& [nombre, actual] : {
             std::pair(u" PDF "_s, u"PDF"_s),
             std::pair(u"pdf"_s, u"Kalo"_s),
         }) {
        SCOPED_TRACE(actual.toStdString());
        BorraFormas();
        EstableceImpresoraActual(nullptr);
        imp.EstableceImpresora(nombre);
        EXPECT_EQ(ImpresoraActual()->Lee(u"DeviceName"_s).texto(), actual);
        EXPECT_EQ(MedioDe(actual, u"Tiendanova_Tiendanova"_s), u"Custom.215.9x279.4mm"_s);
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
    for (const QString& puerto : {u"Otra"_s, u"\\\\caja\\Otra"_s}) {
        const int32_t antes = UltimoTrabajoDe("Otra");
        imp.AbrirCajonDeDinero(puerto, u"\x1bp"_s + QChar(0) + QChar(0x19) + QChar(0xFA));
        const int32_t trabajo = UltimoTrabajoDe("Otra");
        ASSERT_GT(trabajo, antes) << puerto.toStdString();
        QFile bytes(EsperaTrabajo(trabajo));
        EXPECT_TRUE(bytes.open(QIODevice::ReadOnly));
        EXPECT_EQ(bytes.readAll(), QByteArray("\x1bp\0\x19\xfa\r\n", 7));
    }
    const Salida s = Herramienta({u"cajon"_s, u"\\\\caja\\Otra"_s});
    EXPECT_TRUE((s.out + s.err).contains(u"a la cola «Otra»"_s)) << s.err.toStdString();
    EXPECT_EQ(s.codigo, 0);
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new ServidorPrivado);
    return RUN_ALL_TESTS();
}
