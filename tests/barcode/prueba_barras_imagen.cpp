// Barcodes drawn as pictures: the encoder's pictures, what the component
// records and asks of the utility object, and what zbar, a decoder independent
// of every encoder here, reads on a preview after a host draws them.

#include "comun/prueba.h"

#include "barcode/imagenes_zint.h"
#include "comun/lectura_de_barras.h"

using namespace zbar;

namespace {

QImage Dibuja(Simbologia s, int16_t alto, const QString& datos, bool incluyeHR = true) {
    return ImagenDeBarras(s, alto, datos, false, incluyeHR)->imagen();
}

bool Oscuro(const QImage& imagen, int x, int y) { return qGray(imagen.pixel(x, y)) < 128; }

// Per sample: bars exactly the height asked for (EAN guards descend below the
// others), readable text only under the bars, pure black and white, clear
// quiet zones and no element narrower than the 2-pixel module.
TEST(BarrasImagenes, BarrasNitidasDelAltoPedidoYTextoDebajo) {
    // The quiet zones, left and right, in modules.
    const std::tuple<Simbologia, QString, int, int> casos[] = {{Simbologia::Code128, u"Pedido 4512"_s, 10, 10},
                                                               {Simbologia::Code39, u"ABC-123"_s, 10, 10},
                                                               {Simbologia::EAN13, u"750100000001"_s, 11, 7},
                                                               {Simbologia::EAN8, u"1234567"_s, 7, 7}};
    for (const auto& [simbologia, datos, izquierda, derecha] : casos) {
        SCOPED_TRACE(datos.toStdString());
        for (int16_t alto : {40, 81}) {
            const QImage imagen = Dibuja(simbologia, alto, datos, false);
            int masBaja = imagen.height() + 1;
            for (int x = 0; x < imagen.width(); ++x) {
                int racha = 0, larga = 0;
                for (int y = 0; y < imagen.height(); ++y)
                    larga = std::max(larga, racha = Oscuro(imagen, x, y) ? racha + 1 : 0);
                if (larga > 0) masBaja = std::min(masBaja, larga);
            }
            EXPECT_EQ(masBaja, alto);
        }
        const QImage con = Dibuja(simbologia, 60, datos).convertToFormat(QImage::Format_Grayscale8);
        const QImage sin = Dibuja(simbologia, 60, datos, false);
        EXPECT_EQ(con.width(), sin.width());
        ASSERT_GT(con.height(), sin.height());
        int tinta = 0;
        for (int y = 0; y < con.height(); ++y)
            for (int x = 0; x < con.width(); ++x) {
                const int gris = qGray(con.pixel(x, y));
                ASSERT_TRUE(gris == 0 || gris == 255) << x << "," << y;
                tinta += y >= sin.height() && gris == 0;
            }
        EXPECT_GT(tinta, 0);
        // Along a line through the bars.
        const int y = 30;
        int primero = -1, ultimo = -1;
        for (int x = 0; x < con.width(); ++x)
            if (Oscuro(con, x, y)) {
                if (primero < 0) primero = x;
                ultimo = x;
            }
        ASSERT_GE(primero, 0);
        int masAngosto = con.width();
        for (int x = primero, inicio = primero; x <= ultimo; ++x)
            if (x == ultimo || Oscuro(con, x + 1, y) != Oscuro(con, x, y)) {
                masAngosto = std::min(masAngosto, x + 1 - inicio);
                inicio = x + 1;
            }
        EXPECT_GE(primero, 2 * izquierda);
        EXPECT_LE(ultimo, con.width() - 1 - 2 * derecha);
        EXPECT_EQ(masAngosto, 2);
    }
}

TEST(BarrasImagenes, Code128CompactaLosDigitosEnParejas) {
    // Code set C: ten digits take the five symbol characters of five letters.
    const int digitos = Dibuja(Simbologia::Code128, 40, u"1234567890"_s).width();
    EXPECT_EQ(digitos, Dibuja(Simbologia::Code128, 40, u"ABCDE"_s).width());
    EXPECT_LT(digitos, Dibuja(Simbologia::Code128, 40, u"ABCDEFGHIJ"_s).width());
}

TEST(BarrasImagenes, RechazaLoQueLaSimbologiaNoAdmite) {
    const std::tuple<Simbologia, int16_t, QString, bool> casos[] = {
        {Simbologia::EAN13, 60, u"7501000000013"_s, false},  // wrong check digit
        {Simbologia::EAN8, 60, u"1234ABC"_s, false},
        {Simbologia::EAN13, 60, u"75010"_s, false},  // zint would make an add-on of it
        // zint would pad it to a valid EAN-13 (its last digit checks).
        {Simbologia::EAN8, 60, u"123456784"_s, false},
        {Simbologia::Code39, 60, u"abc"_s, true},
        {Simbologia::Code39, 60, u"A*B"_s, false},
        {Simbologia::Code128, 60, u""_s, false},
        {Simbologia::Code128, 60, u"10 €"_s, false},
        {Simbologia::Code128, 0, u"A"_s, false},
        {Simbologia::Code39, 4001, u"A"_s, false},
    };
    for (const auto& [simbologia, alto, datos, checkSum] : casos)
        EXPECT_EQ(NumeroDeError([&] { ImagenDeBarras(simbologia, alto, datos, checkSum, true); }), 5)
            << datos.toStdString() << " alto " << alto;
    // The text names the symbology and the digit zint expected.
    QString texto;
    NumeroDeError([&] { ImagenDeBarras(Simbologia::EAN13, 60, u"7501000000013"_s, false, true); }, &texto);
    EXPECT_TRUE(texto.contains(u"EAN-13"_s) && texto.contains(u"'2'"_s)) << texto.toStdString();
}

// Answers every barcode with the same picture and notes what it was asked.
class CodificadorDePrueba : public UtileriasPredeterminadas {
public:
    using P = std::shared_ptr<Objeto>;
    P ImagenBar128(int16_t& a, QString& d, bool& hr) override { return Anota(u"128"_s, a, d, false, hr); }
    P ImagenBar3de9(int16_t& a, QString& d, bool& s, bool& hr) override { return Anota(u"39"_s, a, d, s, hr); }
    P ImagenBarEAN13(int16_t& a, QString& d, bool& hr) override { return Anota(u"EAN13"_s, a, d, false, hr); }
    P ImagenBarEAN8(int16_t& a, QString& d, bool& hr) override { return Anota(u"EAN8"_s, a, d, false, hr); }
    P Anota(const QString& tipo, int16_t alto, const QString& datos, bool suma, bool hr) {
        pedido = tipo + u'|' + QString::number(alto) + u'|' + datos + u'|' + (suma ? u"S"_s : u"-"_s) +
                 (hr ? u"H"_s : u"-"_s);
        if (falla) Lanza(err::kLlamadaNoValida);
        return imagen;
    }
    QString pedido;
    bool falla = false;
    std::shared_ptr<Imagen> imagen = std::make_shared<Imagen>(QImage(4, 2, QImage::Format_RGB32));
};

class BarrasComoImagen : public prueba::ConImpresoraYVistaGrabadoras<> {
protected:
    void SetUp() override {
        ConImpresoraYVistaGrabadoras::SetUp();
        SustituyeUtilerias(codificador);
        imp.IniciaDocumento();
    }
    QString UltimoComando() {
        const QStringList comandos = prueba::Comandos(imp.DB);
        return comandos.isEmpty() ? QString() : comandos.last();
    }

    std::shared_ptr<CodificadorDePrueba> codificador = std::make_shared<CodificadorDePrueba>();
};

TEST_F(BarrasComoImagen, ComandosYPedidosConSusValoresPorOmision) {
    std::tuple<std::vector<Variant>, const char*, const char*> casos[] = {
        {{int16_t{40}, "AB\"1", 1, 2, 3, 0.5},
         "Bar128 Fn(\"40\"),\"AB\"1\",Fn(\"1\"),Fn(\"2\"),Fn(\"3\"),Fn(\"0.5\"),True", "128|40|AB\"1|-H"},
        {{60, "CODE", 0, 0, 2, 1},
         "Bar3de9 Fn(\"60\"),\"CODE\",Fn(\"0\"),Fn(\"0\"),Fn(\"2\"),Fn(\"1\"),False,True", "39|60|CODE|-H"},
        {{60, "CODE", 0, 0, 2, 1, true, false},
         "Bar3de9 Fn(\"60\"),\"CODE\",Fn(\"0\"),Fn(\"0\"),Fn(\"2\"),Fn(\"1\"),True,False", "39|60|CODE|S-"},
        {{50, "750100000001", 1, 1, 2, 1, false},
         "BarEAN13 Fn(\"50\"),\"750100000001\",Fn(\"1\"),Fn(\"1\"),Fn(\"2\"),Fn(\"1\"),False",
         "EAN13|50|750100000001|--"},
        {{50, "1234567", 1, 1, 2, 1},
         "BarEAN8 Fn(\"50\"),\"1234567\",Fn(\"1\"),Fn(\"1\"),Fn(\"2\"),Fn(\"1\"),True", "EAN8|50|1234567|-H"},
    };
    for (auto& [argumentos, comando, pedido] : casos) {
        SCOPED_TRACE(comando);
        imp.InvocaPorNombre(QString::fromUtf8(comando).section(u' ', 0, 0), Llamada::Metodo, argumentos);
        EXPECT_EQ(UltimoComando(), QString::fromUtf8(comando) + u"\r\n"_s);
        EXPECT_EQ(codificador->pedido, QString::fromUtf8(pedido));
        const std::vector<Variant> pintura = {codificador->imagen, argumentos[2], argumentos[3], argumentos[4],
                                              argumentos[5]};
        EXPECT_TRUE(Identicos(vista->De(u"PaintPicture"_s).back().argumentos, pintura));
    }
}

// Nothing fails once the command is recorded; a rectangle that is not a
// number fails before.
TEST_F(BarrasComoImagen, UnCodificadorQueFallaNoPintaNiAvisa) {
    codificador->falla = true;
    EXPECT_NO_THROW(imp.Bar128(40, u"x"_s, 1, 1, 2, 1));
    EXPECT_EQ(vista->De(u"PaintPicture"_s).back().argumentos[0].objeto(), nullptr);
    EXPECT_TRUE(UltimoComando().startsWith(u"Bar128 "_s));
    codificador->pedido.clear();
    const int32_t antes = imp.nLinea;
    EXPECT_EQ(NumeroDeError([&] { imp.BarEAN8(40, u"1234567"_s, u"izq"_s, 1, 2, 1); }), 13);
    EXPECT_EQ(imp.nLinea, antes);
    EXPECT_TRUE(codificador->pedido.isEmpty());
}

// At 300 dpi the narrowest Code 39 element (11 twips) is 2.3 pixels and a
// wide one 6.9: snapping edges to pixels cannot make the two widths meet.
// At the default 96 dpi a narrow bar would be thinner than a pixel.
constexpr double kPpp = 300;
const QSize kPagina(8.5 * kPpp, 2 * kPpp);

// What a host's preview shows after one document with dibuja in it.
QImage EnVista(const std::function<void(Impresora&)>& dibuja) {
    // Even the preview asks the current printer for its offsets.
    EstableceImpresoraActual(std::make_shared<prueba::ObjetoGrabador>());
    auto superficie = CreaSuperficieDeImagen(kPagina.width(), kPagina.height(), kPpp);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = superficie;
    // A logical page the surface's size: one inch drawn is one inch seen.
    imp.FormaAncho(kPagina.width() / kPpp);
    imp.FormaAlto(kPagina.height() / kPpp);
    imp.IniciaDocumento();
    dibuja(imp);
    imp.FinDocumento();
    return std::dynamic_pointer_cast<Imagen>(superficie->Lee(u"Image"_s).objeto())->imagen();
}

TEST(LecturaDeBarras, Codigo39EnLaVista) {
    const Variant omitido = Variant::Falta();
    const std::tuple<Variant, QString, Variant, bool, std::string> casos[] = {
        {20, u"12345"_s, omitido, false, "12345"},
        // zbar hands the check character back as data.
        {20, u"12345"_s, int16_t{1}, false, "12345F"},
        {20, u"12345"_s, true, false, "12345"},  // true is not the number 1
        {20, u"12345"_s, Variant::Nulo(), false, "12345"},
        {20, u"ABC-12"_s, omitido, false, "ABC-12"},
        {20, u"*ABC-12*"_s, omitido, false, "ABC-12"},
        // The frame stands 150 twips off the bars: a full quiet zone of ten
        // narrows while the narrow is at most 15.
        {15, u"ABC-12"_s, int16_t{1}, true, "ABC-12T"},
        // Below the minimum: drawn at 11 twips.
        {int16_t{5}, u"ABC-12"_s, int16_t{1}, false, "ABC-12T"},
        // Every character's pattern, read by a decoder that knows the symbology.
        {15, u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%"_s, omitido, false,
         "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%"},
    };
    int fila = 0;
    for (const auto& [angosto, mensaje, verificador, caja, leido] : casos) {
        const QImage imagen = EnVista([&](Impresora& imp) {
            imp.Codigo39(720, 720, angosto, 900, mensaje, caja, verificador, u"Lote 7"_s, u"Caja 3"_s);
        });
        EXPECT_EQ(Lee(imagen), (std::vector<Lectura>{{ZBAR_CODE39, leido}})) << "fila " << fila++;
    }
}

TEST(LecturaDeBarras, ImagenesEstiradasEnLaVista) {
    // The flags follow the rectangle; readable text when omitted.
    const std::tuple<const char*, QString, std::vector<Variant>, Lectura> casos[] = {
        {"Bar128", u"Pedido 4512"_s, {false}, {ZBAR_CODE128, "Pedido 4512"}},
        // zbar hands the check character back as data.
        {"Bar3de9", u"ABC-12"_s, {true}, {ZBAR_CODE39, "ABC-12T"}},
        {"Bar3de9", u"ABC-123"_s, {false, false}, {ZBAR_CODE39, "ABC-123"}},
        // Twelve or seven digits: the symbol carries its computed check digit.
        {"BarEAN13", u"750100000001"_s, {}, {ZBAR_EAN13, "7501000000012"}},
        {"BarEAN13", u"4006381333931"_s, {false}, {ZBAR_EAN13, "4006381333931"}},
        {"BarEAN8", u"1234567"_s, {}, {ZBAR_EAN8, "12345670"}},
        {"BarEAN8", u"96385074"_s, {false}, {ZBAR_EAN8, "96385074"}},
    };
    // Inches. Neither has a picture's proportions: one wide and flat, one
    // narrow and tall.
    const QRectF rectangulos[] = {
        {0.5, 0.3, 5.0, 0.8},
        {0.5, 0.3, 1.6, 1.4},
    };
    for (const auto& [metodo, datos, banderas, leida] : casos)
        for (const QRectF& r : rectangulos) {
            std::vector<Variant> argumentos = {int16_t{60}, datos, r.left(), r.top(), r.width(), r.height()};
            argumentos.insert(argumentos.end(), banderas.begin(), banderas.end());
            const QImage imagen = EnVista([&](Impresora& imp) {
                imp.InvocaPorNombre(QString::fromLatin1(metodo), Llamada::Metodo, argumentos);
            });
            EXPECT_EQ(Lee(imagen), std::vector<Lectura>{leida}) << metodo << " en " << r.width() << " x " << r.height();
        }
}

}  // namespace
