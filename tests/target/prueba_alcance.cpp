// Output that no sheet could hold overflows with the runtime's error before it
// reaches the drawing code's integers; output short of that still draws.

#include "comun/prueba.h"

#include <QPainter>

#include "target/lienzo.h"

namespace {

TEST(Alcance, MasAllaDeCualquierHojaDesbordaSinDibujarNiMoverse) {
    QImage imagen(100, 100, QImage::Format_RGB32);
    imagen.fill(Qt::white);
    const QImage enBlanco = imagen;
    QPainter pintor(&imagen);
    Lienzo lienzo(imagen.size(), 96, 96, [&] { return &pintor; });
    lienzo.ScaleMode(escala::kPixeles);
    constexpr double kLejos = 1e12, kCerca = 1 << 23;
    const std::function<void()> llamadas[] = {
        [&] { lienzo.Line(trazo::kConPrimerPunto, -kLejos, 10, 50, 10); },
        [&] { lienzo.Line(trazo::kConPrimerPunto | trazo::kCajaLlena, 10, 10, kLejos, 20); },
        [&] { lienzo.Line(trazo::kConPrimerPunto | trazo::kSegundoRelativo, 90, NAN, 1, 0); },
        [&] { lienzo.Circle(0, 50, 50, kLejos); },
        [&] { lienzo.PaintPicture(QImage(4, 4, QImage::Format_RGB32), 10, 10, kLejos, 10); },
        [&] { lienzo.CurrentX(-kLejos), lienzo.Print(QStringLiteral("x")); },
    };
    for (const auto& llamada : llamadas) {
        lienzo.CurrentY(8);
        EXPECT_EQ(NumeroDeError(llamada), err::kDesbordamiento);
        EXPECT_EQ(lienzo.CurrentY(), 8);
    }
    EXPECT_EQ(imagen, enBlanco);
    EXPECT_EQ(NumeroDeError([&] { lienzo.Line(trazo::kConPrimerPunto, -kCerca, 10, kCerca, 10); }), 0);
    EXPECT_EQ(imagen.pixel(0, 10) | imagen.pixel(99, 10), qRgb(0, 0, 0));  // across the whole image
}

}  // namespace
