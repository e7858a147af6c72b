// Paper size, orientation and the printer's form: against a recording
// printer (member calls, error paths) and against the embedded PDF printer
// (the sheet each call leaves, read back from the printed file).

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "comun/impresora_con_grabadores.h"
#include "comun/lectura_de_reporte.h"
#include "comun/utilerias_de_prueba.h"
#include "cups/herramientas_pdf.h"
#include "paper/cola_de_impresion.h"
#include "target/impresora_sistema.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::ObjetoGrabador;

namespace {

// A recording printer that converts units as the runtime's does, in single
// precision: twips, inches and millimetres are enough here.
class ImpresoraGrabadora : public ObjetoGrabador {
public:
    using ObjetoGrabador::ObjetoGrabador;
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> args) override {
        Variant r = ObjetoGrabador::Invoca(dispid, tipo, args);
        if (tipo == Llamada::Metodo && (dispid == IdDeNombre(u"ScaleX"_s) || dispid == IdDeNombre(u"ScaleY"_s)))
            return Variant(static_cast<float>(CSng(args[0]) * Twips(CInt(args[1])) / Twips(CInt(args[2]))));
        return r;
    }

private:
    static double Twips(int16_t modo) { return modo == 5 ? 1440 : modo == 6 ? 1440 / 25.4 : 1; }
};

// The size of the device's form by that name (thousandths of a millimetre);
// an empty size when there is none.
QSize TamanoDeForma(const QString& dispositivo, const QString& nombre) {
    for (const auto& f : cola::FormasDe(dispositivo))
        if (f.nombre == nombre) return QSize(f.cx, f.cy);
    return {};
}

// A letter sheet in portrait on a recording printer whose name is this test's.
class Papel : public prueba::ConImpresoraYVistaGrabadoras<> {
protected:
    void SetUp() override {
        ConImpresoraYVistaGrabadoras::SetUp();
        const auto* prueba = ::testing::UnitTest::GetInstance()->current_test_info();
        dispositivo = u"Grabadora "_s + QString::fromLatin1(prueba->name());
        impresora->Pon(u"DeviceName"_s, dispositivo);
        impresora->Pon(u"PaperSize"_s, int16_t{1});
        impresora->Pon(u"Orientation"_s, int16_t{1});
        impresora->Pon(u"Width"_s, 12240);
        impresora->Pon(u"Height"_s, 15840);
        impresora->Pon(u"ScaleMode"_s, int16_t{1});
    }
    std::shared_ptr<ObjetoGrabador> NuevoGrabador() override { return std::make_shared<ImpresoraGrabadora>(); }

    std::vector<Variant> Asignados(const QString& miembro) const {
        std::vector<Variant> r;
        for (const auto& l : impresora->De(miembro))
            if (l.tipo == Llamada::AsignaValor) r.push_back(l.argumentos[0]);
        return r;
    }

    QString dispositivo;
};

// Each method reached by name, as the host reaches it; what the spool file
// keeps of each is its command text.
TEST_F(Papel, CadaMetodoPorAutomatizacionQuedaGrabadoConSuTexto) {
    auto llama = [&](const char* nombre, std::vector<Variant> args = {}) {
        return imp.InvocaPorNombre(QString::fromLatin1(nombre), Llamada::Metodo, args);
    };
    llama("Portrait");
    llama("LandScape");
    llama("PaperSize", {u"256"_s, 4.25, 6.5});
    EXPECT_EQ(imp.EstiloImpresion(), u"Tiendanova"_s);
    llama("RestauraPapel");
    QString estilo = u"Automata"_s;
    imp.EstiloImpresion(estilo);
    llama("EstableceEstiloImpresoraNT");
    EXPECT_TRUE(TamanoDeForma(dispositivo, u"Tiendanova_Automata"_s).isValid());
    EXPECT_TRUE(llama("CreaForma").identico(Variant::Nada()));
    EXPECT_EQ(prueba::Comandos(imp.DB),
              (QStringList{u"Portrait\r\n"_s, u"LandScape\r\n"_s,
                           u"PaperSize Fn(\"256\"),Fn(\"4.25\"),Fn(\"6.5\")\r\n"_s, u"RestauraPapel\r\n"_s}));
    EXPECT_EQ(imp.nLinea, 4);
}

// Portrait never turns the page back nor resets the grid; only the printer
// is told the orientation.
TEST_F(Papel, ApaisadaDosVecesYLuegoVerticalEnImpresoraYEnPantalla) {
    for (bool pantalla : {false, true}) {
        SCOPED_TRACE(pantalla);
        Impresora otra;
        otra.Pantalla = pantalla;
        impresora->llamados.clear();
        auto estado = [&] {
            return u"%1 x %2, %3 x %4, %5 %6"_s.arg(otra.FormaAncho()).arg(otra.FormaAlto()).arg(otra.nRow)
                .arg(otra.nCol).arg(otra.PaperOrientation).arg(int(otra.Horizontal));
        };
        otra.LandScape();
        EXPECT_EQ(estado(), u"11 x 8.5, 40 x 130, 2 1"_s);
        otra.LandScape();
        EXPECT_EQ(estado(), u"11 x 8.5, 40 x 130, 2 1"_s);
        otra.Portrait();
        EXPECT_EQ(estado(), u"11 x 8.5, 40 x 130, 1 0"_s);
        std::vector<int16_t> dadas;
        for (const Variant& v : Asignados(u"Orientation"_s)) dadas.push_back(CInt(v));
        EXPECT_EQ(dadas, pantalla ? std::vector<int16_t>{} : (std::vector<int16_t>{2, 2, 1}));
    }
}

TEST_F(Papel, TamanoDeUsuarioPasaAlDriverEnElOrdenDeSiempre) {
    impresora->Pon(u"PaperSize"_s, int16_t{256});
    struct Caso {
        double ancho, alto;
        int32_t cx, cy;  // the form: whole inches, halves to even
    };
    for (const Caso& c : {Caso{4, 6, 101600, 152400}, Caso{4.5, 6.5, 101600, 152400}, Caso{5.5, 7.5, 152400, 203200}}) {
        SCOPED_TRACE(c.ancho);
        impresora->llamados.clear();
        impresora->Pon(u"Width"_s, 12240);
        impresora->Pon(u"Height"_s, 15840);
        imp.PaperSize(256, c.ancho, c.alto, u"Caja"_s);
        // First the driver gets Width from nH over the 8-inch printable width, and height 0.
        const auto anchos = Asignados(u"Width"_s), altos = Asignados(u"Height"_s);
        ASSERT_EQ(anchos.size(), 2u);
        EXPECT_TRUE(anchos[0].identico(Variant(CLng(12240 / 8 * c.alto))));
        EXPECT_TRUE(altos[0].identico(Variant(0)));
        EXPECT_EQ(imp.FormaAncho(), c.ancho);
        EXPECT_EQ(imp.FormaAlto(), c.alto);
        EXPECT_EQ(imp.EstiloImpresion(), u"Caja"_s);
        // The style's form is the sheet the printer ends on.
        EXPECT_EQ(TamanoDeForma(dispositivo, u"Tiendanova_Caja"_s), QSize(c.cx, c.cy));
        EXPECT_EQ(cola::UltimaSeleccion(dispositivo).forma, u"Tiendanova_Caja"_s);
        EXPECT_TRUE(anchos[1].identico(Variant(c.cx * 1440 / 25400)));
        EXPECT_TRUE(altos[1].identico(Variant(c.cy * 1440 / 25400)));
    }
}

TEST_F(Papel, UnaImpresoraQueFallaDejaElTamanoPedidoSinAvisar) {
    struct Caso {
        const char* falta;
        const char16_t* estilo;  // what EstiloImpresion ends as
    };
    // Without PaperSize it fails before anything; without ScaleY, in the final
    // form step, after the style was stored and the landscape sizes swapped.
    for (const Caso& c : {Caso{"PaperSize", u"Tiendanova"}, Caso{"ScaleY", u"Caja"}}) {
        SCOPED_TRACE(c.falta);
        QStringList miembros{u"DeviceName"_s, u"PaperSize"_s, u"Orientation"_s, u"Width"_s, u"Height"_s,
                             u"ScaleMode"_s, u"ScaleWidth"_s, u"ScaleHeight"_s, u"hDC"_s, u"ScaleX"_s, u"ScaleY"_s};
        miembros.removeAll(QString::fromLatin1(c.falta));
        auto rota = std::make_shared<ImpresoraGrabadora>(miembros);
        rota->Pon(u"DeviceName"_s, dispositivo);
        rota->Pon(u"PaperSize"_s, int16_t{256});
        rota->Pon(u"Orientation"_s, int16_t{2});
        EstableceImpresoraActual(rota);
        Impresora otra;
        EXPECT_EQ(prueba::NumeroDeError([&] { otra.PaperSize(256, 4, 6, u"Caja"_s); }), 0);
        EXPECT_EQ(otra.FormaAncho(), 4);
        EXPECT_EQ(otra.FormaAlto(), 6);
        EXPECT_EQ(otra.EstiloImpresion(), QString::fromUtf16(c.estilo));
        EXPECT_EQ(otra.nLinea, 1);
    }
}

TEST_F(Papel, ElNombreDeFormaSeCortaA32CaracteresSinNulo) {
    struct Caso {
        QString estilo;
        QByteArray campo;
        bool seleccionada;  // the driver finds the form by the name the field holds
    };
    const QString justo = u"Mostrador_de_entrada"_s + u'X';       // 11 + 21 = 32 characters
    const QString largo = u"Mostrador_de_entrada_principal"_s;     // 41 characters
    const std::vector<Caso> casos = {
        {u"Caja"_s, QByteArray("Tiendanova_Caja") + '\0' + QByteArray(16, ' '), true},
        {justo, (u"Tiendanova_"_s + justo).toLatin1(), true},
        {largo, (u"Tiendanova_"_s + largo).left(32).toLatin1(), false},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.estilo.toStdString());
        QString estilo = c.estilo;
        imp.EstiloImpresion(estilo);
        imp.EstableceEstiloImpresoraNT();
        const cola::Seleccion s = cola::UltimaSeleccion(dispositivo);
        EXPECT_EQ(s.nombreDeForma, c.campo);
        EXPECT_EQ(s.forma, c.seleccionada ? u"Tiendanova_"_s + c.estilo : QString());
        // The form itself keeps its whole name; the sheet is the letter one
        // read in twips.
        EXPECT_EQ(TamanoDeForma(dispositivo, u"Tiendanova_"_s + c.estilo), QSize(215900, 279400));
    }
}

TEST_F(Papel, UnDesbordeDeLaFormaSoloLlegaDesdeEstableceEstiloImpresoraNT) {
    // 100000 inches are 2.54e9 thousandths of a millimetre: beyond 32 bits.
    impresora->Pon(u"ScaleMode"_s, int16_t{5});
    impresora->Pon(u"Width"_s, 100000);
    impresora->Pon(u"Height"_s, 100000);
    struct Caso {
        const char* metodo;
        int32_t error;
    };
    for (const Caso& c : {Caso{"EstableceEstiloImpresoraNT", err::kDesbordamiento}, Caso{"RestauraPapel", 0}}) {
        SCOPED_TRACE(c.metodo);
        EXPECT_EQ(prueba::NumeroDeError([&] { imp.Llama(QString::fromLatin1(c.metodo)); }), c.error);
        EXPECT_TRUE(Asignados(u"Width"_s).empty());
    }
}

// The embedded PDF printer as the current printer: what sheet each call
// leaves is what the next printed page measures.
class PapelEnPdf : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(carpeta.isValid());
        NuevaImpresora();
    }
    void NuevaImpresora() {
        impresora = ImpresoraDelSistema::EnPdf(carpeta.path());
        EstableceImpresoraActual(impresora);
    }

    int32_t Miembro(const QString& nombre) { return CLng(impresora->Lee(nombre)); }
    QSizeF PaginaImpresa() {
        impresora->Llama(u"Print"_s, {u"x"_s});
        impresora->Llama(u"EndDoc"_s);
        const auto pdf = prueba::LeePdf(impresora->Lee(u"ArchivoDeSalida"_s).texto());
        return pdf.tamanos.size() == 1 ? pdf.tamanos[0] : QSizeF();
    }

    QTemporaryDir carpeta;
    std::shared_ptr<ImpresoraDelSistema> impresora;
    Impresora imp;
    const QString pdf = u"PDF (KaloImpresora)"_s;
};

TEST_F(PapelEnPdf, CadaPapelTerminaEnLaFormaDePulgadasEnteras) {
    struct Caso {
        int16_t codigo;
        double ancho, alto;      // asked for
        double formaAncho, formaAlto;  // inches the page is laid out on
        int32_t cx, cy;          // the form, thousandths of a millimetre
    };
    // A4 is 8.27 x 11.69 inches: its form rounds to 8 x 12.
    for (const Caso& c : {Caso{1, 0, 0, 8.5, 11, 203200, 279400}, Caso{9, 0, 0, 210 / 25.4, 297 / 25.4, 203200, 304800},
                          Caso{256, 4, 6, 4, 6, 101600, 152400}}) {
        SCOPED_TRACE(c.codigo);
        NuevaImpresora();
        const int32_t abiertas = cola::ImpresorasAbiertas();
        imp.PaperSize(c.codigo, c.ancho, c.alto);
        // The printable area as the device lays it out, to the dot.
        EXPECT_NEAR(imp.FormaAncho(), c.formaAncho, 0.01);
        EXPECT_NEAR(imp.FormaAlto(), c.formaAlto, 0.01);
        EXPECT_EQ(imp.PapelTipo, 1);
        EXPECT_EQ(TamanoDeForma(pdf, u"Tiendanova_Tiendanova"_s), QSize(c.cx, c.cy));
        EXPECT_EQ(cola::UltimaSeleccion(pdf).forma, u"Tiendanova_Tiendanova"_s);
        EXPECT_EQ(cola::ImpresorasAbiertas(), abiertas);
        EXPECT_EQ(Miembro(u"PaperSize"_s), 256);
        EXPECT_EQ(Miembro(u"Width"_s), c.cx * 1440 / 25400);
        EXPECT_EQ(Miembro(u"Height"_s), c.cy * 1440 / 25400);
        EXPECT_EQ(PaginaImpresa(), QSizeF(c.cx * 72 / 25400, c.cy * 72 / 25400));
    }
}

TEST_F(PapelEnPdf, RestauraPapelDevuelveLaHojaDeAntesDelUltimoPaperSize) {
    // Before any PaperSize the code is 0: refused, silently.
    imp.RestauraPapel();
    EXPECT_EQ(Miembro(u"PaperSize"_s), 1);
    EXPECT_EQ(imp.nLinea, 1);

    imp.PaperSize(256, 4, 6);
    imp.PaperSize(9);
    EXPECT_EQ(imp.PapelTipo, 256);
    for (int vez = 0; vez < 2; ++vez) {
        imp.RestauraPapel();
        EXPECT_EQ(Miembro(u"Width"_s), 5760);
        EXPECT_EQ(Miembro(u"Height"_s), 8640);
    }
    EXPECT_EQ(PaginaImpresa(), QSizeF(288, 432));
}

}  // namespace
