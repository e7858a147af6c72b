// Output that no sheet could hold overflows with the runtime's error before it
// reaches the drawing code's integers; output short of that still draws.

#include <QImage>
#include <QPainter>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "target/lienzo.h"

using namespace kalo;
using kalo::prueba::NumeroDeError;

namespace {

TEST(Alcance, MasAllaDeCualquierHojaDesbordaSinDibujarNiMoverse) {
    QImage imagen(100, 100, QImage::Format_RGB32);
    imagen.fill(Qt::white);
    const QImage enBlanco = imagen;
    QPainter pintor(&imagen);
    Lienzo lienzo(imagen.size(), 96, 96, [&] { return &pintor; });
    lienzo.ScaleMode(escala::kPixeles);
    const QImage foto(4, 4, QImage::Format_RGB32);
    constexpr double kLejos = 1e12;
    struct Caso {
        const char* que;
        std::function<void()> llamada;
    } casos[] = {
        {"línea", [&] { lienzo.Line(trazo::kConPrimerPunto, -kLejos, 10, 50, 10); }},
        {"caja", [&] { lienzo.Line(trazo::kConPrimerPunto | trazo::kCaja, 10, 10, 20, kLejos); }},
        {"caja llena", [&] { lienzo.Line(trazo::kConPrimerPunto | trazo::kCajaLlena, 10, 10, kLejos, 20); }},
        {"segundo punto relativo", [&] { lienzo.Line(trazo::kConPrimerPunto | trazo::kSegundoRelativo, 90, 10, kLejos, 0); }},
        {"no es un número", [&] { lienzo.Line(trazo::kConPrimerPunto, NAN, 10, 50, 10); }},
        {"centro", [&] { lienzo.Circle(0, kLejos, 50, 5); }},
        {"radio", [&] { lienzo.Circle(0, 50, 50, kLejos); }},
        {"imagen", [&] { lienzo.PaintPicture(foto, 10, 10, kLejos, 10); }},
        {"texto", [&] {
             lienzo.CurrentX(-kLejos);
             lienzo.Print(QStringLiteral("x"));
         }},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.que);
        lienzo.CurrentX(7);
        lienzo.CurrentY(8);
        EXPECT_EQ(NumeroDeError(c.llamada), err::kDesbordamiento);
        if (std::string(c.que) != "texto") {
            EXPECT_EQ(lienzo.CurrentX(), 7);
            EXPECT_EQ(lienzo.CurrentY(), 8);
        }
    }
    EXPECT_EQ(imagen, enBlanco);

    // Just inside the reach: a line across the whole image, clipped as ever.
    constexpr double kCerca = 1 << 23;
    EXPECT_EQ(NumeroDeError([&] { lienzo.Line(trazo::kConPrimerPunto, -kCerca, 10, kCerca, 10); }), 0);
    EXPECT_EQ(NumeroDeError([&] { lienzo.Circle(0, 50, 50, kCerca); }), 0);
    EXPECT_EQ(imagen.pixel(0, 10), qRgb(0, 0, 0));
    EXPECT_EQ(imagen.pixel(99, 10), qRgb(0, 0, 0));
}

}  // namespace
