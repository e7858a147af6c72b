// The printer whose pages are images: the job lifecycle as the pages handed
// over, the sheet and resolution of each page, and that what is drawn reaches
// the page handed over. The drawing itself is the preview surfaces' and is
// proven there; the sheet members are shared with the system printer.

#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
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

// No border: each page is its whole sheet at the chosen resolution, the sheet
// in force when the page began. A5 is sized from its millimetres: in whole
// points it would come out 875 dots wide.
TEST_F(ImpresoraImagenes, CadaPaginaEsSuHojaEnteraALaResolucionElegida) {
    Crea(150);
    o().Asigna(u"ScaleMode"_s, int16_t{3});
    EXPECT_DOUBLE_EQ(Num(u"ScaleWidth"_s), 1275);
    EXPECT_DOUBLE_EQ(Num(u"ScaleHeight"_s), 1650);
    EXPECT_DOUBLE_EQ(CDbl(o().Llama(u"ScaleX"_s, {1440, int16_t{1}, int16_t{3}})), 150);
    o().Llama(u"Print"_s, {u""_s});
    o().Asigna(u"PaperSize"_s, int16_t{11});
    o().Llama(u"NewPage"_s);
    o().Llama(u"EndDoc"_s);
    std::vector<QSize> tamanos;
    for (const auto& p : paginas) tamanos.push_back(p.imagen.size());
    EXPECT_EQ(tamanos, (std::vector<QSize>{{1275, 1650}, {874, 1240}}));
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

// A page handed over is the receiver's alone: nothing here still holds it,
// so a long job keeps no more than the page under way. Each page starts white.
TEST_F(ImpresoraImagenes, LasPaginasEntregadasNoSeGuardan) {
    std::vector<QImage> guardadas;
    auto propia = ImpresoraDeImagenes::Crea(50, [&](const QImage& pagina, int) { guardadas.push_back(pagina); });
    for (int i = 0; i < 3; ++i) {
        propia->Llama(u"Line"_s, {int16_t{38}, 0.0, 0.0, 1440.0, 1440.0, int32_t{0x0000FF}});  // red inch
        propia->Llama(u"NewPage"_s);
    }
    propia->Llama(u"EndDoc"_s);
    ASSERT_EQ(guardadas.size(), 4u);
    for (QImage& g : guardadas) EXPECT_TRUE(g.isDetached());
    EXPECT_EQ(guardadas[0].pixelColor(10, 10), QColor(Qt::red));
    EXPECT_EQ(guardadas[0].pixelColor(60, 60), QColor(Qt::white));
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
