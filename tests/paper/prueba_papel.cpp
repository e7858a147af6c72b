// Paper size, orientation, the printer's form and printer selection on
// printers with no print server behind them: a recording printer (member
// calls, error paths) and the embedded PDF printer (the sheet each call
// leaves, read back from the printed file). The print server's side is in
// tests/cups.

#include "comun/prueba.h"

#include "comun/herramientas_pdf.h"
#include "target/impresora_sistema.h"

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
    llama("EstableceEstiloImpresoraNT");
    EXPECT_TRUE(llama("CreaForma").identico(Variant::Nada()));
    // No destination has these names: the printer stays, and the style's
    // form is applied to it all the same; Null changes nothing.
    EXPECT_EQ(imp.Paginas, 0);
    impresora->Pon(u"ScaleMode"_s, int16_t{1});
    for (const Variant& nombre : {Variant(u"  Caja 1 "_s), Variant::Nulo()}) {
        impresora->llamados.clear();
        llama("EstableceImpresora", {nombre});
        EXPECT_EQ(ImpresoraActual(), impresora);
        EXPECT_EQ(Asignados(u"Width"_s).size(), nombre.esNulo() ? 0u : 1u);
    }
    EXPECT_EQ(imp.Paginas, 1);
    llama("AbrirCajonDeDinero", {u"/dev/kalo-sin-cajon"_s, u"x"_s});
    EXPECT_EQ(prueba::Comandos(imp.DB),
              (QStringList{
                  u"Portrait\r\n"_s,
                  u"LandScape\r\n"_s,
                  u"PaperSize Fn(\"256\"),Fn(\"4.25\"),Fn(\"6.5\")\r\n"_s,
                  u"RestauraPapel\r\n"_s,
                  u"EstableceImpresora \"Caja 1\"\r\n"_s,
                  u"EstableceImpresora \"\"\r\n"_s,
              }));
    EXPECT_EQ(imp.nLinea, 6);
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
        const QStringList dadas = {u"Asigna orientation=2"_s, u"Asigna orientation=2"_s, u"Asigna orientation=1"_s};
        EXPECT_EQ(impresora->Registro(), pantalla ? QStringList() : dadas);
    }
}

// Deliberately shifted: the driver first gets Width from nH over the 8-inch
// printable width, and height 0; then the style's form sets the sheet.
TEST_F(Papel, TamanoDeUsuarioPasaAlDriverEnElOrdenDeSiempre) {
    impresora->Pon(u"PaperSize"_s, int16_t{256});
    imp.PaperSize(256, 4.5, 6.5, u"Caja"_s);
    EXPECT_EQ(QSizeF(imp.FormaAncho(), imp.FormaAlto()), QSizeF(4.5, 6.5));
    const auto anchos = Asignados(u"Width"_s), altos = Asignados(u"Height"_s);
    ASSERT_EQ(anchos.size(), 2u);
    EXPECT_TRUE(anchos[0].identico(Variant(CLng(12240 / 8 * 6.5))));
    EXPECT_TRUE(altos[0].identico(Variant(0)));
    EXPECT_TRUE(anchos[1].identico(Variant(4 * 1440)));
    EXPECT_TRUE(altos[1].identico(Variant(6 * 1440)));
}

TEST_F(Papel, UnaImpresoraQueFallaDejaElTamanoPedidoSinAvisar) {
    // The member the printer lacks, and the style left. Without PaperSize it
    // fails before anything; without ScaleY, in the final form step, after the
    // style was stored and the landscape sizes swapped.
    for (const auto& [falta, estilo] : {
             std::pair("PaperSize", u"Tiendanova"),
             std::pair("ScaleY", u"Caja"),
         }) {
        SCOPED_TRACE(falta);
        QStringList miembros{u"DeviceName"_s, u"PaperSize"_s, u"Orientation"_s, u"Width"_s, u"Height"_s,
                             u"ScaleMode"_s, u"ScaleWidth"_s, u"ScaleHeight"_s, u"hDC"_s, u"ScaleX"_s, u"ScaleY"_s};
        miembros.removeAll(QString::fromLatin1(falta));
        auto rota = std::make_shared<ImpresoraGrabadora>(miembros);
        rota->Pon(u"DeviceName"_s, dispositivo);
        rota->Pon(u"PaperSize"_s, int16_t{256});
        rota->Pon(u"Orientation"_s, int16_t{2});
        EstableceImpresoraActual(rota);
        Impresora otra;
        EXPECT_EQ(prueba::NumeroDeError([&] { otra.PaperSize(256, 4, 6, u"Caja"_s); }), 0);
        EXPECT_EQ(QSizeF(otra.FormaAncho(), otra.FormaAlto()), QSizeF(4, 6));
        EXPECT_EQ(otra.EstiloImpresion(), QString::fromUtf16(estilo));
        EXPECT_EQ(otra.nLinea, 1);
    }
}

TEST_F(Papel, UnDesbordeDeLaFormaSoloLlegaDesdeEstableceEstiloImpresoraNT) {
    // 100000 inches are 2.54e9 thousandths of a millimetre: beyond 32 bits.
    impresora->Pon(u"ScaleMode"_s, int16_t{5});
    impresora->Pon(u"Width"_s, 100000);
    impresora->Pon(u"Height"_s, 100000);
    for (const auto& [metodo, error] : {std::pair("EstableceEstiloImpresoraNT", err::kDesbordamiento),
                                        std::pair("RestauraPapel", 0)}) {
        EXPECT_EQ(prueba::NumeroDeError([&] { imp.Llama(QString::fromLatin1(metodo)); }), error) << metodo;
        EXPECT_TRUE(Asignados(u"Width"_s).empty()) << metodo;
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
};

TEST_F(PapelEnPdf, CadaPapelTerminaEnLaFormaDePulgadasEnteras) {
    // Code, inches asked for and style; inches the page is laid out on; the form,
    // in thousandths of a millimetre: whole inches, halves to even. A4 is 8.27 x
    // 11.69 inches: its form rounds to 8 x 12.
    for (const auto& [codigo, pedido, estilo, pagina, forma] :
         {std::tuple(1, QSizeF(0, 0), u"Tiendanova"_s, QSizeF(8.5, 11), QSize(203200, 279400)),
          std::tuple(9, QSizeF(0, 0), u"Tiendanova"_s, QSizeF(210 / 25.4, 297 / 25.4), QSize(203200, 304800)),
          std::tuple(256, QSizeF(4, 6), u"Caja"_s, QSizeF(4, 6), QSize(101600, 152400)),
          std::tuple(256, QSizeF(4.5, 6.5), u"Caja"_s, QSizeF(4.5, 6.5), QSize(101600, 152400)),
          std::tuple(256, QSizeF(5.5, 7.5), u"Caja"_s, QSizeF(5.5, 7.5), QSize(152400, 203200))}) {
        SCOPED_TRACE(pedido.width());
        NuevaImpresora();
        imp.PaperSize(codigo, pedido.width(), pedido.height(), estilo);
        // The printable area as the device lays it out, to the dot.
        EXPECT_NEAR(imp.FormaAncho(), pagina.width(), 0.01);
        EXPECT_NEAR(imp.FormaAlto(), pagina.height(), 0.01);
        EXPECT_EQ(imp.PapelTipo, 1);
        EXPECT_EQ(imp.EstiloImpresion(), estilo);
        EXPECT_EQ(Miembro(u"PaperSize"_s), 256);
        EXPECT_EQ(QSize(Miembro(u"Width"_s), Miembro(u"Height"_s)), forma * 1440 / 25400);
        EXPECT_EQ(PaginaImpresa(), QSizeF(forma) * 72 / 25400);
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
