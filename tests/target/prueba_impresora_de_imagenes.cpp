// The printer whose pages are images: the job lifecycle as the pages handed
// over, and the sheet and resolution of each page. The drawing itself is the
// preview surfaces'; the sheet members are shared with the system printer.

#include "comun/prueba.h"

#include "target/impresora_de_imagenes.h"

namespace {

struct Entregadas {
    std::vector<QImage> imagenes;
    std::vector<int> numeros;
    std::shared_ptr<ImpresoraDeImagenes> Crea(int ppp) {
        return ImpresoraDeImagenes::Crea(ppp, [this](const QImage& pagina, int numero) {
            imagenes.push_back(pagina);
            numeros.push_back(numero);
        });
    }
};

// No border: each page is its whole sheet at the chosen resolution, the sheet
// in force when the page began. A5 is sized from its millimetres: in whole
// points it would come out 875 dots wide.
TEST(ImpresoraImagenes, CadaPaginaEsSuHojaEnteraALaResolucionElegida) {
    Entregadas e;
    auto o = e.Crea(150);
    o->Asigna(u"ScaleMode"_s, int16_t{3});
    EXPECT_DOUBLE_EQ(CDbl(o->Lee(u"ScaleWidth"_s)), 1275);
    EXPECT_DOUBLE_EQ(CDbl(o->Lee(u"ScaleHeight"_s)), 1650);
    o->Llama(u"Print"_s, {u""_s});
    o->Asigna(u"PaperSize"_s, int16_t{11});
    o->Llama(u"NewPage"_s);
    o->Llama(u"EndDoc"_s);
    ASSERT_EQ(e.imagenes.size(), 2u);
    EXPECT_EQ(e.imagenes[0].size(), QSize(1275, 1650));
    EXPECT_EQ(e.imagenes[1].size(), QSize(874, 1240));
    EXPECT_EQ(e.imagenes[0].logicalDpiY(), 150);
    for (int ppp : {0, 2401})
        EXPECT_EQ(NumeroDeError([&] { ImpresoraDeImagenes::Crea(ppp, {}); }), err::kLlamadaNoValida);
}

TEST(ImpresoraImagenes, PaginasEntregadasPorTrabajo) {
    // Steps (Print, NewPage, EndDoc, KillDoc, Suprime, Destruye) and the page numbers handed over.
    const std::tuple<const char*, QString, std::vector<int>> casos[] = {
        {"nada sin salida", u"EE"_s, {}},
        {"solo paginas nuevas", u"NNE"_s, {1, 2, 3}},
        {"dos trabajos", u"PNEPE"_s, {1, 2, 1}},
        {"KillDoc descarta la pagina en curso", u"PNPKPE"_s, {1, 1}},
        {"suprimido o no, al destruirse entrega lo abierto", u"PNSD"_s, {1, 2}},
    };
    for (const auto& [nombre, pasos, entregadas] : casos) {
        Entregadas e;
        auto o = e.Crea(100);
        for (QChar paso : pasos) {
            switch (paso.unicode()) {
            case u'P': o->Llama(u"Print"_s, {u"x"_s}); break;
            case u'N': o->Llama(u"NewPage"_s); break;
            case u'E': o->Llama(u"EndDoc"_s); break;
            case u'K': o->Llama(u"KillDoc"_s); break;
            case u'S': o->Asigna(u"Suprime"_s, true); break;
            case u'D': o.reset(); break;
            }
        }
        EXPECT_EQ(e.numeros, entregadas) << nombre;
    }
}

// A page handed over is the receiver's alone: nothing here still holds it,
// so a long job keeps no more than the page under way. Each page starts white.
TEST(ImpresoraImagenes, LasPaginasEntregadasNoSeGuardan) {
    Entregadas e;
    auto o = e.Crea(50);
    for (int i = 0; i < 3; ++i) {
        o->Llama(u"Line"_s, {int16_t{38}, 0.0, 0.0, 1440.0, 1440.0, int32_t{0x0000FF}});  // red inch
        o->Llama(u"NewPage"_s);
    }
    o->Llama(u"EndDoc"_s);
    ASSERT_EQ(e.imagenes.size(), 4u);
    for (QImage& g : e.imagenes) EXPECT_TRUE(g.isDetached());
    EXPECT_EQ(e.imagenes[0].pixelColor(10, 10), QColor(Qt::red));
    EXPECT_EQ(e.imagenes[0].pixelColor(60, 60), QColor(Qt::white));
    EXPECT_EQ(e.imagenes[3].pixelColor(10, 10), QColor(Qt::white));
}

}  // namespace
