// Text and font methods, lines, boxes, circles and pictures: what they record
// and ask of recording targets; pictures in the common file formats drawn on a
// real image preview.

#include "comun/prueba.h"

#include <QCoreApplication>

namespace {

class Graficos : public prueba::ConImpresoraYVistaGrabadoras<::testing::TestWithParam<bool>> {
protected:
    void SetUp() override {
        ConImpresoraYVistaGrabadoras::SetUp();
        imp.Pantalla = !EnImpresora();
        imp.Archivo = false;
        imp.IniciaDocumento();
    }

    bool EnImpresora() const { return GetParam(); }
    ObjetoGrabador& Destino() { return EnImpresora() ? *impresora : *vista; }
    // Arguments of the last call of a member on the active target.
    std::vector<Variant> Ultimo(const QString& miembro) {
        auto llamados = Destino().De(miembro);
        return llamados.empty() ? std::vector<Variant>{} : llamados.back().argumentos;
    }
    // The last call's arguments, each of the same type and contents, on the printer or the preview.
    void CompruebaUltimo(const QString& miembro, const std::vector<Variant>& enImpresora,
                         const std::vector<Variant>& enVista) {
        EXPECT_TRUE(Identicos(Ultimo(miembro), EnImpresora() ? enImpresora : enVista)) << Describe(Ultimo(miembro));
    }
};

TEST_P(Graficos, LineaVaAlOrillaIzquierdaYDesplazaSoloEnLaImpresora) {
    imp.Linea(1, 2, 3, u"4"_s);
    CompruebaUltimo(u"Line"_s, {int16_t{4}, 0.75f, 1.75f, 2.75f, 3.75f, int32_t{0}},
                    {int16_t{4}, 1, 2, 3, u"4"_s, int16_t{0}});
    EXPECT_TRUE(Destino().Valor(u"CurrentX"_s).identico(EnImpresora() ? Variant(-0.25f) : Variant()));
    // Box leaves the position alone.
    Destino().llamados.clear();
    imp.Box(1, 1, 1, 1);
    EXPECT_TRUE(Destino().De(u"CurrentX"_s).empty());
}

TEST_P(Graficos, CajasSumanComoVariantes) {
    // "1" & "2" = "12", less the offset on the printer.
    imp.Box(u"1"_s, 0, u"2"_s, 1);
    CompruebaUltimo(u"Line"_s, {int16_t{20}, 0.75f, -0.25f, 11.75f, 0.75f, int32_t{0}},
                    {int16_t{20}, u"1"_s, 0, u"12"_s, 1, int16_t{0}});
    imp.FilledBox(1, 0, 2, 1, u"255"_s);
    CompruebaUltimo(u"Line"_s, {int16_t{38}, 0.75f, -0.25f, 2.75f, 0.75f, int32_t{255}},
                    {int16_t{38}, 1, 0, 3, 1, u"255"_s});
}

TEST_P(Graficos, CirculoSinElMiembroFallaAlAnfitrion) {
    imp.PCircle(2, 3, 1);
    const Variant cero(int16_t{0});
    CompruebaUltimo(u"Circle"_s, {cero, 1.75f, 2.75f, 1.0f, cero, cero, cero, cero},
                    {cero, 2, 3, 1, cero, cero, cero, cero});
    // A target that lacks Circle: the circle fails to the host, the line is silent.
    auto parcial = std::make_shared<ObjetoGrabador>(QStringList{u"ScaleMode"_s});
    if (EnImpresora())
        EstableceImpresoraActual(parcial);
    else
        modulo4::Estado().objDestino = parcial;
    EXPECT_NO_THROW(imp.Linea(0, 0, 1, 1));
    EXPECT_EQ(NumeroDeError([&] { imp.PCircle(1, 1, 1); }), 438);
}

TEST_P(Graficos, ImagenesSinDesplazarYArchivosQueFaltan) {
    // One file per process: ctest runs the instances side by side.
    const QString archivo = QDir::tempPath() + u"/kalo-prueba-imagen-%1.png"_s.arg(QCoreApplication::applicationPid());
    QImage(2, 2, QImage::Format_RGB32).save(archivo);
    imp.Picture(archivo, 1, 2, 3, 4);
    const auto a = Ultimo(u"PaintPicture"_s);
    ASSERT_FALSE(a.empty());
    ASSERT_NE(std::dynamic_pointer_cast<Imagen>(a[0].objeto()), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<Imagen>(a[0].objeto())->imagen().size(), QSize(2, 2));
    CompruebaUltimo(u"PaintPicture"_s, {a[0], 1.0f, 2.0f, 3, 4}, {a[0], 1, 2, 3, 4});
    QFile::remove(archivo);

    EXPECT_NO_THROW(imp.Picture(u"/no/existe.png"_s, 1, 2, 3, 4));
    CompruebaUltimo(u"PaintPicture"_s, {Variant::Nada(), 1.0f, 2.0f, 3, 4}, {Variant::Nada(), 1, 2, 3, 4});
}

TEST_P(Graficos, ArgumentosQueNoSonNumerosNoRegistranNiDibujan) {
    const int32_t antes = imp.nLinea;
    Destino().llamados.clear();
    EXPECT_EQ(NumeroDeError([&] { imp.Box(u"uno"_s, 0, 1, 1); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.FilledBox(0, 0, 1, 1, Variant::Nulo()); }), 94);
    EXPECT_EQ(NumeroDeError([&] { imp.Picture(u"x.png"_s, 0, 0, u"ancho"_s, 1); }), 13);
    EXPECT_EQ(imp.nLinea, antes);
    EXPECT_TRUE(Destino().llamados.empty());
}

INSTANTIATE_TEST_SUITE_P(ImpresoraYVista, Graficos, ::testing::Values(true, false),
                         [](const auto& info) { return info.param ? "Impresora" : "Vista"; });

TEST(DocumentoEnImagen, ImagenesEnLosFormatosComunes) {
    // 8.5 x 11 inches at 96 dpi: page inches map 1:1.
    auto vista = CreaSuperficieDeImagen(8.5 * 96, 11 * 96, 96);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
    QTemporaryDir carpeta;
    QImage azul(16, 16, QImage::Format_RGB32);
    azul.fill(Qt::blue);
    int x = 0;
    for (const char* formato : {"bmp", "png", "jpg", "ico"}) {
        SCOPED_TRACE(formato);
        const QString archivo = carpeta.filePath(u"logo."_s + QString::fromLatin1(formato));
        ASSERT_TRUE(azul.save(archivo, formato));
        imp.Picture(archivo, 0.5 + x, 5, 0.5, 0.5);
        const QColor c = std::dynamic_pointer_cast<Imagen>(vista->Lee(u"Image"_s).objeto())
                             ->imagen()
                             .pixelColor(qRound((0.75 + x) * 96), qRound(5.25 * 96));
        EXPECT_GT(c.blue(), 200);
        EXPECT_LT(c.red(), 60);
        ++x;
    }
}

using Texto = prueba::ConImpresoraYVistaGrabadoras<>;

TEST_F(Texto, SayRegistraLaRejillaYEscribeElTextoSinCambiar) {
    imp.IniciaDocumento();
    imp.Say(1, 2, u"a\"b'c"_s);
    // nrow and ncol in the 66 x 80 grid: 1 / (11 / 66) and 2 / (8.5 / 80).
    EXPECT_EQ(Consulta(imp.DB, "SELECT source, nrow, ncol, contenido FROM source WHERE row = 2"),
              (std::vector<Fila>{
                  {u"Say Fn(\"1\"),Fn(\"2\"),\"a''b'c\"\r\n"_s, u"6.0"_s, u"18.8235294117647"_s, u"a\"b'c"_s}}));
    EXPECT_EQ(vista->Registro().mid(vista->Registro().size() - 3),
              (QStringList{u"Asigna currentx=2"_s, u"Asigna currenty=1"_s, u"Llama print(a\"b'c)"_s}));
}

TEST_F(Texto, RenglonYColumnaDeLaRejilla) {
    // Value, row and column in inches.
    const std::tuple<Variant, double, double> casos[] = {
        {Variant(), 0, 0},
        {u"12"_s, 2, 1.275},
    };
    for (const auto& [valor, renglon, columna] : casos) {
        EXPECT_DOUBLE_EQ(CDbl(imp.Row(valor)), renglon);
        EXPECT_DOUBLE_EQ(CDbl(imp.Col(valor)), columna);
    }
    EXPECT_EQ(NumeroDeError([&] { imp.Row(u"x"_s); }), 13);
    EXPECT_EQ(imp.nLinea, 0);
}

TEST_F(Texto, LosErroresDeConversionLleganAntesDeRegistrar) {
    imp.IniciaDocumento();
    imp.nRow = 0;
    EXPECT_EQ(NumeroDeError([&] { imp.Say(1, 1, u"x"_s); }), 11);
    EXPECT_EQ(NumeroDeError([&] { imp.Row(1); }), 11);
    EXPECT_EQ(NumeroDeError([&] { imp.EstableceFuente(u"Arial"_s, u"grande"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Say(u"arriba"_s, 1, u"x"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.ColorDeFuente(Variant::Nulo()); }), 94);
    EXPECT_EQ(imp.nLinea, 1);
    imp.CurrentY(2);
    EXPECT_EQ(imp.nLinea, 2);
    EXPECT_EQ(Comandos(imp.DB).size(), 2);
}

// The message itself reaches the target, not its text.
TEST_F(Texto, PorNombreComoLoLlamaElAnfitrion) {
    imp.IniciaDocumento();
    imp.Llama(u"say"_s, {imp.Llama(u"Row"_s, {3}), imp.Llama(u"Col"_s, {10}), 1234});
    EXPECT_TRUE(vista->Valor(u"CurrentY"_s).identico(Variant(0.5)));
    EXPECT_TRUE(vista->Valor(u"CurrentX"_s).identico(Variant(1.0625)));
    EXPECT_TRUE(vista->De(u"Print"_s).back().argumentos[0].identico(Variant(1234)));
    EXPECT_EQ(Comandos(imp.DB).last(), u"Say Fn(\"0.5\"),Fn(\"1.0625\"),\"1234\"\r\n"_s);
}

}  // namespace
