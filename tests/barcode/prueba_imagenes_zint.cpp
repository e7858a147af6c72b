// The pictures are read back with libzbar: a symbol that merely looks right
// does not pass.

#include <QImage>
#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "barcode/imagenes_zint.h"
#include "comun/lectura_de_barras.h"
#include "comun/utilerias_de_prueba.h"

namespace kalo {
namespace {

using namespace Qt::StringLiterals;
using prueba::Lectura;
using prueba::Lee;
using prueba::NumeroDeError;
// zbar.h puts its C interface in this namespace when compiled as C++.
using namespace zbar;

QImage Dibuja(Simbologia s, int16_t alto, const QString& datos, bool checkSum = false, bool incluyeHR = true) {
    return ImagenDeBarras(s, alto, datos, checkSum, incluyeHR)->imagen();
}

bool Oscuro(const QImage& imagen, int x, int y) { return qGray(imagen.pixel(x, y)) < 128; }

// Per column, the longest run of dark pixels.
std::vector<int> AltosDeBarra(const QImage& imagen) {
    std::vector<int> altos(imagen.width(), 0);
    for (int x = 0; x < imagen.width(); ++x)
        for (int y = 0, racha = 0; y < imagen.height(); ++y) {
            racha = Oscuro(imagen, x, y) ? racha + 1 : 0;
            altos[x] = std::max(altos[x], racha);
        }
    return altos;
}

struct Muestra {
    Simbologia simbologia;
    QString datos;
};

const Muestra kMuestras[] = {
    {Simbologia::Code128, u"Pedido 4512"_s},
    {Simbologia::Code39, u"ABC-123"_s},
    {Simbologia::EAN13, u"750100000001"_s},
    {Simbologia::EAN8, u"1234567"_s},
};

TEST(BarrasImagenes, SeLeeLoQueSeCodifica) {
    struct Caso {
        Simbologia simbologia;
        QString datos;
        bool checkSum;
        Lectura esperada;
    };
    const Caso casos[] = {
        {Simbologia::Code128, u"Hola Mundo, cliente 7"_s, false, {ZBAR_CODE128, "Hola Mundo, cliente 7"}},
        {Simbologia::Code39, u"ABC-123"_s, false, {ZBAR_CODE39, "ABC-123"}},
        // zbar does not strip the check character: it comes back as data.
        {Simbologia::Code39, u"ABC-123"_s, true, {ZBAR_CODE39, "ABC-123W"}},
        {Simbologia::EAN13, u"750100000001"_s, false, {ZBAR_EAN13, "7501000000012"}},
        {Simbologia::EAN13, u"4006381333931"_s, false, {ZBAR_EAN13, "4006381333931"}},
        {Simbologia::EAN8, u"1234567"_s, false, {ZBAR_EAN8, "12345670"}},
        {Simbologia::EAN8, u"96385074"_s, false, {ZBAR_EAN8, "96385074"}},
    };
    for (const Caso& c : casos)
        for (bool incluyeHR : {true, false}) {
            SCOPED_TRACE(c.datos.toStdString() + (incluyeHR ? " con texto" : " sin texto"));
            EXPECT_EQ(Lee(Dibuja(c.simbologia, 60, c.datos, c.checkSum, incluyeHR)),
                      std::vector<Lectura>{c.esperada});
        }
}

TEST(BarrasImagenes, Code128CompactaLosDigitosEnParejas) {
    // Code set C: ten digits take the five symbol characters of five letters.
    const int digitos = Dibuja(Simbologia::Code128, 40, u"1234567890"_s).width();
    EXPECT_EQ(digitos, Dibuja(Simbologia::Code128, 40, u"ABCDE"_s).width());
    EXPECT_LT(digitos, Dibuja(Simbologia::Code128, 40, u"ABCDEFGHIJ"_s).width());
}

TEST(BarrasImagenes, RechazaLoQueLaSimbologiaNoAdmite) {
    struct Caso {
        Simbologia simbologia;
        int16_t alto;
        QString datos;
        bool checkSum;
    };
    const Caso casos[] = {
        {Simbologia::EAN13, 60, u"7501000000013"_s, false},  // wrong check digit
        {Simbologia::EAN8, 60, u"1234ABC"_s, false},
        {Simbologia::EAN13, 60, u"75010"_s, false},       // zint would make an add-on of it
        // zint would pad it to a valid EAN-13 (its last digit checks).
        {Simbologia::EAN8, 60, u"123456784"_s, false},
        {Simbologia::Code39, 60, u"abc"_s, true},
        {Simbologia::Code39, 60, u"A*B"_s, false},
        {Simbologia::Code128, 60, u""_s, false},
        {Simbologia::Code128, 60, u"10 €"_s, false},
        {Simbologia::Code128, 0, u"A"_s, false},
        {Simbologia::Code39, 4001, u"A"_s, false},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.datos.toStdString() + " alto " + std::to_string(c.alto));
        EXPECT_EQ(NumeroDeError([&] { ImagenDeBarras(c.simbologia, c.alto, c.datos, c.checkSum, true); }), 5);
    }
}

TEST(BarrasImagenes, ElErrorNombraLaSimbologiaYElMotivo) {
    try {
        ImagenDeBarras(Simbologia::EAN13, 60, u"7501000000013"_s, false, true);
        FAIL() << "sin error";
    } catch (const ErrorDeAutomatizacion& e) {
        EXPECT_TRUE(e.descripcion().contains(u"EAN-13"_s)) << e.what();
        EXPECT_TRUE(e.descripcion().contains(u"'2'"_s)) << e.what();  // the digit zint expected
    }
}

TEST(BarrasImagenes, AltoDeBarraEnPixelesDeLaImagen) {
    for (const Muestra& m : kMuestras)
        for (int16_t alto : {40, 81}) {
            SCOPED_TRACE(m.datos.toStdString() + " alto " + std::to_string(alto));
            std::vector<int> altos = AltosDeBarra(Dibuja(m.simbologia, alto, m.datos, false, false));
            std::erase(altos, 0);
            ASSERT_FALSE(altos.empty());
            // EAN guard bars descend below the others; no bar is shorter.
            EXPECT_EQ(*std::min_element(altos.begin(), altos.end()), alto);
        }
}

TEST(BarrasImagenes, TextoLegibleDebajoDeLasBarras) {
    for (const Muestra& m : kMuestras) {
        SCOPED_TRACE(m.datos.toStdString());
        const QImage con = Dibuja(m.simbologia, 60, m.datos, false, true);
        const QImage sin = Dibuja(m.simbologia, 60, m.datos, false, false);
        EXPECT_EQ(con.width(), sin.width());
        ASSERT_GT(con.height(), sin.height());
        int tinta = 0;
        for (int y = sin.height(); y < con.height(); ++y)
            for (int x = 0; x < con.width(); ++x) tinta += Oscuro(con, x, y);
        EXPECT_GT(tinta, 0);
    }
}

TEST(BarrasImagenes, BarrasNitidasConZonasDeSilencio) {
    struct Caso {
        Muestra muestra;
        int izquierda, derecha;  // quiet zones in modules
    };
    const Caso casos[] = {
        {kMuestras[0], 10, 10}, {kMuestras[1], 10, 10}, {kMuestras[2], 11, 7}, {kMuestras[3], 7, 7}};
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.muestra.datos.toStdString());
        const QImage imagen =
            Dibuja(c.muestra.simbologia, 60, c.muestra.datos).convertToFormat(QImage::Format_Grayscale8);
        for (int y = 0; y < imagen.height(); ++y)
            for (int x = 0; x < imagen.width(); ++x) {
                const int gris = qGray(imagen.pixel(x, y));
                ASSERT_TRUE(gris == 0 || gris == 255) << x << "," << y;
            }
        // Along a line through the bars: the zones are clear and no element
        // is narrower than a 2-pixel module.
        const int y = 30;
        int primero = -1, ultimo = -1;
        for (int x = 0; x < imagen.width(); ++x)
            if (Oscuro(imagen, x, y)) {
                if (primero < 0) primero = x;
                ultimo = x;
            }
        ASSERT_GE(primero, 0);
        int masAngosto = imagen.width();
        for (int x = primero, inicio = primero; x <= ultimo; ++x)
            if (x == ultimo || Oscuro(imagen, x + 1, y) != Oscuro(imagen, x, y)) {
                masAngosto = std::min(masAngosto, x + 1 - inicio);
                inicio = x + 1;
            }
        EXPECT_GE(primero, 2 * c.izquierda);
        EXPECT_LE(ultimo, imagen.width() - 1 - 2 * c.derecha);
        EXPECT_EQ(masAngosto, 2);
    }
}

}  // namespace
}  // namespace kalo
