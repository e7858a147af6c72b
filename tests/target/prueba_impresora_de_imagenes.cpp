// The printer whose pages are images: the same members as the system
// printer, the job lifecycle as the pages handed over, the sheet of each
// page, and what reaches the pixels.

#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "target/imagen.h"
#include "target/impresora_de_imagenes.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using namespace kalo::prueba;

namespace {

struct Entregada {
    QImage imagen;
    int numero;
};

class ImpresoraImagenes : public ::testing::Test {
protected:
    void Crea(int ppp) {
        impresora = ImpresoraDeImagenes::Crea(ppp, [this](const QImage& pagina, int numero) {
            paginas.push_back({pagina, numero});
        });
    }
    void SetUp() override { Crea(100); }

    Objeto& o() { return *impresora; }
    double Num(const QString& miembro) { return CDbl(o().Lee(miembro)); }
    std::vector<int> Numeros() const {
        std::vector<int> r;
        for (const auto& p : paginas) r.push_back(p.numero);
        return r;
    }

    std::vector<Entregada> paginas;
    std::shared_ptr<ImpresoraDeImagenes> impresora;
};

// Letter portrait with no border: the drawable area is the whole sheet at
// the chosen resolution.
TEST_F(ImpresoraImagenes, CartaEnteraALaResolucionElegida) {
    Crea(150);
    EXPECT_EQ(o().Lee(u"DeviceName"_s).texto(), u"Imágenes (KaloImpresora)"_s);
    EXPECT_EQ(CInt(o().Lee(u"PaperSize"_s)), 1);
    EXPECT_EQ(CInt(o().Lee(u"Orientation"_s)), 1);
    EXPECT_EQ(CLng(o().Lee(u"Width"_s)), 12240);
    EXPECT_EQ(CLng(o().Lee(u"Height"_s)), 15840);
    o().Asigna(u"ScaleMode"_s, int16_t{3});
    EXPECT_DOUBLE_EQ(Num(u"ScaleWidth"_s), 1275);
    EXPECT_DOUBLE_EQ(Num(u"ScaleHeight"_s), 1650);
    EXPECT_DOUBLE_EQ(CDbl(o().Llama(u"ScaleX"_s, {1440, int16_t{1}, int16_t{3}})), 150);
    o().Llama(u"Print"_s, {u""_s});
    o().Llama(u"EndDoc"_s);
    ASSERT_EQ(paginas.size(), 1u);
    EXPECT_EQ(paginas[0].imagen.size(), QSize(1275, 1650));
    EXPECT_EQ(paginas[0].imagen.logicalDpiY(), 150);
    for (int ppp : {0, 2401})
        EXPECT_EQ(NumeroDeError([&] { ImpresoraDeImagenes::Crea(ppp, {}); }), err::kLlamadaNoValida);
}

TEST_F(ImpresoraImagenes, PaginasEntregadasPorTrabajo) {
    struct Caso {
        const char* nombre;
        QString pasos;  // P prints, N new page, E EndDoc, K KillDoc
        std::vector<int> entregadas;
    };
    const std::vector<Caso> casos = {
        {"nada sin salida", u"EE"_s, {}},
        {"solo se entregan paginas terminadas", u"PN"_s, {1}},
        {"una pagina", u"PE"_s, {1}},
        {"paginas nuevas", u"PNPNE"_s, {1, 2, 3}},
        {"solo paginas nuevas", u"NNE"_s, {1, 2, 3}},
        {"dos trabajos", u"PNEPE"_s, {1, 2, 1}},
        {"KillDoc descarta la pagina en curso", u"PNPKPE"_s, {1, 1}},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.nombre);
        paginas.clear();
        for (QChar paso : c.pasos) {
            switch (paso.unicode()) {
            case u'P': o().Llama(u"Print"_s, {u"x"_s}); break;
            case u'N': o().Llama(u"NewPage"_s); break;
            case u'E': o().Llama(u"EndDoc"_s); break;
            case u'K': o().Llama(u"KillDoc"_s); break;
            }
        }
        EXPECT_EQ(Numeros(), c.entregadas);
        o().Llama(u"KillDoc"_s);
    }
}

TEST_F(ImpresoraImagenes, ElDibujoLlegaALosPixeles) {
    o().Asigna(u"ScaleMode"_s, int16_t{5});
    o().Llama(u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 1.0});                      // black line at 1 inch
    o().Llama(u"Line"_s, {int16_t{38}, 5.0, 5.0, 6.0, 6.0, int32_t{0x0000FF}});  // red filled box
    o().Llama(u"Circle"_s, {int16_t{2}, 2.0, 8.0, 0.5, int32_t{0xFF0000}});       // blue circle
    QImage verde(4, 4, QImage::Format_RGB32);
    verde.fill(QColor(0, 255, 0));
    o().Llama(u"PaintPicture"_s, {std::make_shared<Imagen>(verde), 6.5, 1.0, 1.0, 1.0});
    o().Asigna(u"FontSize"_s, 36);
    o().Asigna(u"CurrentX"_s, 1.0);
    o().Asigna(u"CurrentY"_s, 9.5);
    o().Llama(u"Print"_s, {u"MMMM"_s});
    const double ancho = CDbl(o().Llama(u"TextWidth"_s, {u"MMMM"_s}));
    o().Llama(u"EndDoc"_s);

    ASSERT_EQ(paginas.size(), 1u);
    const QImage& p = paginas[0].imagen;
    ASSERT_EQ(p.size(), QSize(850, 1100));
    struct Punto {
        const char* que;
        int x, y;
        QColor color;
    };
    for (const Punto& c : {Punto{"linea", 200, 100, Qt::black}, Punto{"bajo la linea", 200, 110, Qt::white},
                           Punto{"caja llena", 550, 550, Qt::red}, Punto{"fuera de la caja", 610, 610, Qt::white},
                           Punto{"borde del circulo", 250, 800, Qt::blue}, Punto{"centro", 200, 800, Qt::white},
                           Punto{"imagen", 700, 150, Qt::green}, Punto{"esquina", 2, 2, Qt::white}}) {
        SCOPED_TRACE(c.que);
        EXPECT_EQ(p.pixelColor(c.x, c.y), c.color);
    }
    // The text lies on its line and is as wide as TextWidth said.
    int derecha = 0;
    for (int y = 950; y < 1000; ++y)
        for (int x = 90; x < 850; ++x)
            if (qGray(p.pixel(x, y)) < 128) derecha = std::max(derecha, x);
    EXPECT_NEAR(derecha, 100 + ancho * 100, 6);
}

TEST_F(ImpresoraImagenes, CadaPaginaConLaHojaDeSuComienzo) {
    o().Llama(u"Print"_s, {u"carta"_s});
    o().Asigna(u"PaperSize"_s, int16_t{9});
    o().Asigna(u"ScaleMode"_s, int16_t{3});
    // The scale follows the new sheet at once; the page under way keeps its own.
    EXPECT_DOUBLE_EQ(Num(u"ScaleWidth"_s), 827);
    o().Llama(u"NewPage"_s);
    o().Asigna(u"Orientation"_s, int16_t{2});
    o().Llama(u"NewPage"_s);
    o().Asigna(u"Orientation"_s, int16_t{1});
    o().Asigna(u"Width"_s, 4 * 1440);
    o().Asigna(u"Height"_s, 6 * 1440);
    EXPECT_EQ(CInt(o().Lee(u"PaperSize"_s)), 256);
    o().Llama(u"NewPage"_s);
    o().Llama(u"EndDoc"_s);
    std::vector<QSize> tamanos;
    for (const auto& p : paginas) tamanos.push_back(p.imagen.size());
    EXPECT_EQ(tamanos, (std::vector<QSize>{{850, 1100}, {827, 1169}, {1169, 827}, {400, 600}}));
    EXPECT_EQ(NumeroDeError([&] { o().Asigna(u"PaperSize"_s, int16_t{9999}); }), err::kValorDePropiedadNoValido);
}

// A page handed over is the receiver's alone: nothing here still holds it,
// so a long job keeps no more than the page under way.
TEST_F(ImpresoraImagenes, LasPaginasEntregadasNoSeGuardan) {
    std::vector<QImage> guardadas;
    auto propia = ImpresoraDeImagenes::Crea(50, [&](const QImage& pagina, int) { guardadas.push_back(pagina); });
    for (int i = 0; i < 3; ++i) {
        propia->Llama(u"Line"_s, {int16_t{38}, 0.0, 0.0, 1440.0, 1440.0});
        propia->Llama(u"NewPage"_s);
    }
    propia->Llama(u"EndDoc"_s);
    ASSERT_EQ(guardadas.size(), 4u);
    for (QImage& g : guardadas) EXPECT_TRUE(g.isDetached());
    EXPECT_EQ(guardadas[0].pixelColor(10, 10), QColor(Qt::black));
    EXPECT_EQ(guardadas[3].pixelColor(10, 10), QColor(Qt::white));
}

TEST_F(ImpresoraImagenes, AlDestruirseEntregaElTrabajoAbierto) {
    o().Llama(u"Print"_s, {u"x"_s});
    o().Llama(u"NewPage"_s);
    // Suppressed or not, the job under way still goes out.
    o().Asigna(u"Suprime"_s, true);
    impresora.reset();
    EXPECT_EQ(Numeros(), (std::vector<int>{1, 2}));
}

}  // namespace
