// The pictures of the barcode encoder; what they read as is checked by zbar
// through the component (prueba_lectura_de_barras.cpp).

#include <QImage>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "barcode/imagenes_zint.h"
#include "comun/utilerias_de_prueba.h"

namespace kalo {
namespace {

using namespace Qt::StringLiterals;
using prueba::NumeroDeError;

QImage Dibuja(Simbologia s, int16_t alto, const QString& datos, bool incluyeHR = true) {
    return ImagenDeBarras(s, alto, datos, false, incluyeHR)->imagen();
}

bool Oscuro(const QImage& imagen, int x, int y) { return qGray(imagen.pixel(x, y)) < 128; }

// Per sample: bars exactly the height asked for (EAN guards descend below the
// others), readable text only under the bars, pure black and white, clear
// quiet zones and no element narrower than the 2-pixel module.
TEST(BarrasImagenes, BarrasNitidasDelAltoPedidoYTextoDebajo) {
    // Quiet zones, left and right, in modules.
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
        {Simbologia::Code39, 60, u"abc"_s, true}, {Simbologia::Code39, 60, u"A*B"_s, false},
        {Simbologia::Code128, 60, u""_s, false}, {Simbologia::Code128, 60, u"10 €"_s, false},
        {Simbologia::Code128, 0, u"A"_s, false}, {Simbologia::Code39, 4001, u"A"_s, false},
    };
    for (const auto& [simbologia, alto, datos, checkSum] : casos)
        EXPECT_EQ(NumeroDeError([&] { ImagenDeBarras(simbologia, alto, datos, checkSum, true); }), 5)
            << datos.toStdString() << " alto " << alto;
    // The text names the symbology and the digit zint expected.
    try {
        ImagenDeBarras(Simbologia::EAN13, 60, u"7501000000013"_s, false, true);
    } catch (const ErrorDeAutomatizacion& e) {
        EXPECT_TRUE(e.descripcion().contains(u"EAN-13"_s) && e.descripcion().contains(u"'2'"_s)) << e.what();
    }
}

}  // namespace
}  // namespace kalo
