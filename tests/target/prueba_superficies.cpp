// The preview surfaces driven only by member name, as the drawing-target layer
// drives them, checked on the pixels they leave.

#include "comun/prueba.h"

#include <QApplication>
#include <QPainter>
#include <numbers>

#include "target/lienzo.h"

namespace {

constexpr QRgb kBlanco = 0xFFFFFFFF, kNegro = 0xFF000000, kRojo = 0xFFFF0000, kVerde = 0xFF00FF00,
               kAzul = 0xFF0000FF;

// A letter-size page at 96 dpi: 816 x 1056 pixels, 96 pixels to the inch.
std::shared_ptr<Objeto> EnPulgadas() {
    auto s = CreaSuperficieDeImagen(816, 1056);
    s->Asigna(u"ScaleMode"_s, 5);
    return s;
}

QImage Pixeles(Objeto& s) { return std::dynamic_pointer_cast<Imagen>(s.Lee(u"Image"_s).objeto())->imagen(); }

double Num(const Variant& v) { return CDbl(v); }

// Pixels darker than mid-grey inside and outside a rectangle.
std::pair<int, int> Oscuros(const QImage& i, QRect dentro) {
    int adentro = 0, afuera = 0;
    for (int y = 0; y < i.height(); ++y)
        for (int x = 0; x < i.width(); ++x)
            if (qGray(i.pixel(x, y)) < 128) ++(dentro.contains(x, y) ? adentro : afuera);
    return {adentro, afuera};
}

class CajaQueCuentaPintadas : public CajaDeImagen {
public:
    int pintadas = 0;

protected:
    void paintEvent(QPaintEvent* e) override {
        ++pintadas;
        CajaDeImagen::paintEvent(e);
    }
};

}  // namespace

TEST(Superficies, CadaModoDeEscalaMideLaSuperficieEnSuUnidad) {
    // Mode, and the width and height of 960 x 480 pixels at 96 dpi in it.
    const std::tuple<int16_t, double, double> casos[] = {
        {1, 14400, 7200},
        {2, 720, 360},
        {3, 960, 480},
        {4, 120, 30},
        {5, 10, 5},
        {6, 254, 127},
        {7, 25.4, 12.7},
    };
    auto s = CreaSuperficieDeImagen(960, 480);
    EXPECT_EQ(s->Lee(u"ScaleMode"_s).entero(), 1) << "a new surface works in twips";
    for (const auto& [modo, ancho, alto] : casos) {
        s->Llama(u"Scale"_s, {1.0, 1.0, 3.0, 3.0});
        s->Asigna(u"ScaleMode"_s, modo);
        EXPECT_NEAR(Num(s->Lee(u"ScaleWidth"_s)), ancho, 1e-9) << modo;
        EXPECT_NEAR(Num(s->Lee(u"ScaleHeight"_s)), alto, 1e-9) << modo;
        EXPECT_EQ(Num(s->Lee(u"ScaleLeft"_s)), 0) << "a unit puts the origin back at 0,0";
    }
    s->Asigna(u"ScaleWidth"_s, 4.0);
    EXPECT_EQ(s->Lee(u"scalemode"_s).entero(), 0);
    s->Llama(u"Scale"_s);
    EXPECT_EQ(s->Lee(u"ScaleMode"_s).entero(), 1);
    EXPECT_EQ(NumeroDeError([&] { s->Asigna(u"ScaleMode"_s, 8); }), 380);
    EXPECT_EQ(NumeroDeError([&] { s->Asigna(u"ScaleWidth"_s, 0); }), 380);
    // Unknown members and unconvertible arguments are the dispatch's; too few are the surface's.
    EXPECT_EQ(NumeroDeError([&] { s->Llama(u"Line"_s, {4, 1.0, 1.0}); }), 449);
    EXPECT_EQ(NumeroDeError([&] { s->Llama(u"Scale"_s, {1.0, 1.0}); }), 449);
}

// Calls on an inch-scaled letter page, the pixels they leave and where the
// print position ends.
TEST(Superficies, LoDibujadoCaeEnSusPixeles) {
    struct Pixel {
        int x, y;
        QRgb color;
    };
    QImage cuatro(2, 2, QImage::Format_RGB32);
    cuatro.setPixel(0, 0, kRojo);
    cuatro.setPixel(1, 0, kVerde);
    cuatro.setPixel(0, 1, kAzul);
    cuatro.setPixel(1, 1, kNegro);
    const Variant imagen(std::make_shared<Imagen>(cuatro));
    // A box in green ink from 1 to 2 inches, measured across its middle row.
    auto caja = [](std::initializer_list<Variant> linea) {
        return std::vector<Paso>{
            {u"=ForeColor"_s, {0x00FF00}},
            {u"Line"_s, linea},
        };
    };
    auto fila = [](QRgb borde, QRgb interior) {
        return std::vector<Pixel>{
            {96, 150, borde},
            {192, 150, borde},
            {150, 150, interior},
            {193, 150, kBlanco},
        };
    };
    struct Caso {
        const char* que;
        std::vector<Paso> pasos;
        std::vector<Pixel> pixeles;
        std::optional<QPointF> posicion = {};
        std::optional<QRect> todaLaTinta = {};
    } casos[] = {
        {"lineas de un pixel, hasta sus extremos",
         {
             {u"Line"_s, {4, 1.0, 2.0, 3.0, 2.0}},
             {u"Line"_s, {4, 5.0, 1.0, 5.0, 3.0}},
         },
         {
             {96, 192, kNegro},
             {287, 192, kNegro},
             {480, 96, kNegro},
             {480, 287, kNegro},
             {192, 191, kBlanco},
             {192, 193, kBlanco},
             {290, 192, kBlanco},
         },
         QPointF(5, 3),
         QRect(QPoint(96, 96), QPoint(480, 288))},
        {"escala de usuario sobre la pagina",
         {
             {u"Scale"_s, {0.0, 0.0, 8.5, 11.0}},
             {u"Line"_s, {38, 7.5, 10.0, 8.5, 11.0, 255}},
             {u"Line"_s, {4, 4.25, 0.0, 4.25, 11.0}},
         },
         {
             {720, 960, kRojo},
             {815, 1055, kRojo},
             {719, 959, kBlanco},
             {408, 0, kNegro},
             {408, 1055, kNegro},
         },
         QPointF(4.25, 11)},
        {"caja: sin la bandera 2 el color no cuenta", caja({20, 1.0, 1.0, 2.0, 2.0, 255}), fila(kVerde, kBlanco)},
        {"caja llena en rojo", caja({38, 1.0, 1.0, 2.0, 2.0, 255}), fila(kRojo, kRojo)},
        {"caja llena relativa", caja({46, 1.0, 1.0, 1.0, 1.0, 0xFF0000}), fila(kAzul, kAzul), QPointF(2, 2)},
        {"bandera de color sin color: ForeColor", caja({38, 1.0, 1.0, 2.0, 2.0}), fila(kVerde, kVerde)},
        {"Cls limpia con el fondo y vuelve al origen",
         {
             {u"Scale"_s, {2.0, 3.0, 10.0, 10.0}},
             {u"Line"_s, {38, 2.0, 3.0, 10.0, 10.0, 255}},
             {u"=BackColor"_s, {0xFF0000}},
             {u"=CurrentX"_s, {7.0}},
             {u"Cls"_s, {}},
         },
         {
             {0, 0, kAzul},
             {815, 1055, kAzul},
         },
         QPointF(2, 3)},
        {"PaintPicture estira la imagen, o la pone a su tamano",
         {
             {u"PaintPicture"_s, {imagen, 1.0, 1.0, 1.0, 1.0}},
             {u"PaintPicture"_s, {imagen, 4.0, 4.0}},
         },
         {
             {96, 96, kRojo},
             {143, 143, kRojo},
             {144, 100, kVerde},
             {100, 191, kAzul},
             {191, 191, kNegro},
             {192, 192, kBlanco},
             {385, 385, kNegro},
             {386, 386, kBlanco},
         }},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.que);
        auto s = EnPulgadas();
        for (const Paso& p : c.pasos) Aplica(*s, p);
        const QImage i = Pixeles(*s);
        for (const Pixel& p : c.pixeles) EXPECT_EQ(i.pixel(p.x, p.y), p.color) << p.x << "," << p.y;
        if (c.posicion) {
            EXPECT_DOUBLE_EQ(Num(s->Lee(u"CurrentX"_s)), c.posicion->x());
            EXPECT_DOUBLE_EQ(Num(s->Lee(u"CurrentY"_s)), c.posicion->y());
        }
        if (c.todaLaTinta) { EXPECT_EQ(Oscuros(i, *c.todaLaTinta).second, 0); }
    }
}

TEST(Superficies, ImagenesComoObjetoYArgumentosQueNoLoSon) {
    auto picture = std::make_shared<Imagen>(QImage(2, 2, QImage::Format_RGB32));
    EXPECT_EQ(picture->Lee(u"Width"_s).largo(), 53) << "2 pixels at 96 dpi in HIMETRIC";
    EXPECT_EQ(picture->Lee(u"Type"_s).entero(), 1);
    auto s = EnPulgadas();
    EXPECT_EQ(NumeroDeError([&] { s->Llama(u"PaintPicture"_s, {u"logo.png"_s, 1.0, 1.0}); }), 13);
    EXPECT_EQ(NumeroDeError([&] { s->Llama(u"PaintPicture"_s, {Variant::Nada(), 1.0, 1.0}); }), 91);
    EXPECT_EQ(NumeroDeError([&] { s->Llama(u"PaintPicture"_s, {s, 1.0, 1.0}); }), 13);
}

TEST(Superficies, PrintDibujaEnLaPosicionYBajaUnRenglon) {
    auto s = EnPulgadas();
    s->Asigna(u"FontSize"_s, 12);
    s->Asigna(u"CurrentX"_s, 1);
    s->Asigna(u"CurrentY"_s, 1);
    s->Llama(u"Print"_s, {u"HHHH"_s});
    const double ancho = Num(s->Llama(u"TextWidth"_s, {u"HHHH"_s}));
    const double alto = Num(s->Llama(u"TextHeight"_s, {u"HHHH"_s}));
    const QRect celda(96, 96, int(std::ceil(ancho * 96)) + 1, int(std::ceil(alto * 96)) + 1);
    auto [adentro, afuera] = Oscuros(Pixeles(*s), celda);
    EXPECT_GT(adentro, 40);
    EXPECT_EQ(afuera, 0);
    EXPECT_DOUBLE_EQ(Num(s->Lee(u"CurrentX"_s)), 0) << "back to ScaleLeft";
    EXPECT_NEAR(Num(s->Lee(u"CurrentY"_s)), 1 + alto, 1e-9);

    s->Asigna(u"CurrentX"_s, 1);
    s->Llama(u"Print"_s, {u"HH"_s, true});
    EXPECT_NEAR(Num(s->Lee(u"CurrentX"_s)), 1 + Num(s->Llama(u"TextWidth"_s, {u"HH"_s})), 1e-9)
        << "without the line break the position stays after the text";
    s->Llama(u"Print"_s, {u"a\r\nb\nc"_s});
    EXPECT_NEAR(Num(s->Lee(u"CurrentY"_s)), 1 + 4 * alto, 1e-9) << "each line break starts a line";
}

TEST(Superficies, TextoOpacoPintaElFondoDeSuCelda) {
    for (bool transparente : {true, false}) {
        auto s = EnPulgadas();
        s->Asigna(u"BackColor"_s, 0x0000FF);
        s->Asigna(u"FontTransparent"_s, transparente);
        s->Asigna(u"CurrentX"_s, 1);
        s->Asigna(u"CurrentY"_s, 1);
        s->Llama(u"Print"_s, {u"i"_s});
        const QImage i = Pixeles(*s);
        int rojos = 0;
        for (int y = 96; y < 120; ++y)
            for (int x = 96; x < 110; ++x) rojos += i.pixel(x, y) == kRojo;
        EXPECT_TRUE(transparente ? rojos == 0 : rojos > 20) << rojos;
        EXPECT_EQ(i.pixel(300, 300), kBlanco) << "only the cell is filled";
    }
}

TEST(Superficies, ElTamanoDeLetraEsFisicoYProporcional) {
    auto a96 = EnPulgadas();
    auto a600 = CreaSuperficieDeImagen(5100, 6600, 600);
    a600->Asigna(u"ScaleMode"_s, 5);
    const QString texto = u"Reporte de ventas 2024"_s;
    for (double puntos : {8.0, 20.0}) {
        a96->Asigna(u"FontSize"_s, puntos);
        a600->Asigna(u"FontSize"_s, puntos);
        const double ancho96 = Num(a96->Llama(u"TextWidth"_s, {texto}));
        EXPECT_NEAR(Num(a600->Llama(u"TextWidth"_s, {texto})), ancho96, ancho96 * 0.08) << puntos;
        // A line is somewhat taller than the em; how much depends on the face.
        const double alto = Num(a96->Llama(u"TextHeight"_s, {texto}));
        EXPECT_GT(alto, puntos / 72);
        EXPECT_LT(alto, puntos / 72 * 1.7);
    }
    a600->Asigna(u"FontSize"_s, 10);
    const double ancho10 = Num(a600->Llama(u"TextWidth"_s, {texto}));
    a600->Asigna(u"FontSize"_s, 20);
    EXPECT_NEAR(Num(a600->Llama(u"TextWidth"_s, {texto})) / ancho10, 2.0, 0.05);
    a96->Asigna(u"FontSize"_s, 3.64);
    EXPECT_NEAR(Num(a96->Lee(u"FontSize"_s)), 3.64, 1e-6) << "fractional sizes are kept";
    EXPECT_EQ(NumeroDeError([&] { a96->Asigna(u"FontSize"_s, 0); }), 380);

    auto fuente = a96->Lee(u"Font"_s).objeto();
    fuente->Asigna(u"Size"_s, 24);
    fuente->Asigna(u"Bold"_s, true);
    EXPECT_EQ(Num(a96->Lee(u"FontSize"_s)), 24) << "Font is a live view";
    EXPECT_TRUE(a96->Lee(u"FontBold"_s).booleano());
    a96->Asigna(u"FontITalic"_s, true);
    EXPECT_TRUE(CBool(fuente->Lee(u"Italic"_s)));
}

TEST(Superficies, CirculoYArcoPasanPorSuRadio) {
    auto s = EnPulgadas();
    s->Asigna(u"ForeColor"_s, 255);
    s->Llama(u"Circle"_s, {0, 2.0, 2.0, 1.0, int16_t(0), int16_t(0), int16_t(0), int16_t(0)});  // as the layer passes it
    s->Llama(u"Circle"_s, {12, 6.0, 2.0, 1.0, 0, 0.0, std::numbers::pi / 2});  // upper-right quarter
    s->Llama(u"Circle"_s, {16, 2.0, 6.0, 1.0, 0, 0, 0, 0.5});                  // half as tall
    const QImage i = Pixeles(*s);
    auto cerca = [&](int x, int y) {
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (i.pixel(x + dx, y + dy) == kRojo) return true;
        return false;
    };
    const std::tuple<int, int, bool> puntos[] = {
        {288, 192, true},
        {96, 192, true},
        {192, 96, true},
        {192, 288, true},
        {192, 192, false},
        {150, 150, false},
        {672, 192, true},
        {576, 96, true},
        {480, 192, false},  // the arc stops at a quarter
        {576, 288, false},
        {192, 576 - 48, true},
        {192, 576 - 96, false},
    };
    for (const auto& [x, y, rojo] : puntos) EXPECT_EQ(cerca(x, y), rojo) << x << "," << y;
    EXPECT_DOUBLE_EQ(Num(s->Lee(u"CurrentX"_s)), 2) << "the position ends at the centre";
}

// The target layer fits a 6 x 4 inch preview to a letter page by narrowing it
// in its parent's unit, then scales it to page inches.
TEST(Superficies, WidthEnLaUnidadDelContenedorEstrechaLaImagen) {
    auto s = CreaSuperficieDeImagen(576, 384);
    auto padre = s->Lee(u"Parent"_s).objeto();
    EXPECT_EQ(padre->Lee(u"ScaleMode"_s).entero(), 1);
    EXPECT_DOUBLE_EQ(Num(s->Lee(u"Width"_s)), 576 * 15);
    s->Llama(u"Line"_s, {38, 0.0, 0.0, 1440.0, 1440.0, 255});

    padre->Asigna(u"ScaleMode"_s, 5);
    s->Asigna(u"Width"_s, 4.0 / 11 * 8.5);
    padre->Asigna(u"ScaleMode"_s, 1);
    QImage i = Pixeles(*s);
    EXPECT_EQ(i.size(), QSize(297, 384));
    EXPECT_EQ(i.pixel(50, 50), kRojo) << "what was drawn stays";

    s->Asigna(u"Height"_s, 400 * 15);
    s->Llama(u"Scale"_s, {0.0, 0.0, 8.5, 11.0});
    s->Llama(u"Line"_s, {4, 8.5, 0.0, 8.5, 11.0});
    i = Pixeles(*s);
    EXPECT_EQ(i.height(), 400);
    EXPECT_EQ(i.pixel(200, 399), kBlanco) << "new area takes BackColor";
    EXPECT_EQ(NumeroDeError([&] { s->Asigna(u"Width"_s, -1); }), 380);
}

TEST(Superficies, LaImagenLeidaOGuardadaNoCambiaConLoQueSeDibujaDespues) {
    auto s = EnPulgadas();
    const QImage antes = Pixeles(*s);
    s->Llama(u"Line"_s, {38, 1.0, 1.0, 2.0, 2.0, 255});
    EXPECT_EQ(antes.pixel(150, 150), kBlanco);
    QTemporaryDir dir;
    const QString ruta = dir.filePath(u"pagina.png"_s);
    s->Llama(u"GuardaImagen"_s, {ruta});
    const QImage leida(ruta);
    ASSERT_EQ(leida.size(), QSize(816, 1056));
    EXPECT_EQ(leida.pixel(150, 150), kRojo);
    EXPECT_EQ(leida.pixel(50, 50), kBlanco);
    EXPECT_EQ(NumeroDeError([&] { s->Llama(u"GuardaImagen"_s, {dir.filePath(u"no/hay/pagina.png"_s)}); }), 75);
}

TEST(Superficies, LaCajaSeRepintaYSeMueveEnLaUnidadDeSuPadre) {
    AseguraAplicacion();
    QWidget ventana;
    ventana.resize(400, 300);
    auto* caja = new CajaDeImagen(&ventana);
    caja->resize(200, 100);
    auto o = caja->objeto();
    o->Asigna(u"ScaleMode"_s, 3);
    o->Llama(u"Line"_s, {38, 10.0, 10.0, 50.0, 50.0, 255});
    EXPECT_EQ(caja->grab().toImage().pixel(30, 30), kRojo);
    EXPECT_EQ(caja->grab().toImage().pixel(100, 30), kBlanco);

    o->Lee(u"Parent"_s).objeto()->Asigna(u"ScaleMode"_s, 3);
    o->Asigna(u"Width"_s, 120);
    o->Asigna(u"Left"_s, 30);
    EXPECT_EQ(caja->width(), 120);
    EXPECT_EQ(caja->x(), 30);
    EXPECT_EQ(caja->imagen().width(), 120);

    // A box inside a box measures itself in the outer box's scale.
    auto* interior = new CajaDeImagen(caja);
    o->Llama(u"Scale"_s, {0.0, 0.0, 12.0, 10.0});
    interior->objeto()->Asigna(u"Width"_s, 6);
    EXPECT_EQ(interior->width(), 60);
    EXPECT_EQ(interior->objeto()->Lee(u"Parent"_s).objeto(), o);
}

TEST(Superficies, DibujarEnLaCajaVisiblePideRepintarla) {
    AseguraAplicacion();
    CajaQueCuentaPintadas caja;
    caja.resize(120, 80);
    caja.show();
    QApplication::processEvents();
    const int antes = caja.pintadas;
    QApplication::processEvents();
    EXPECT_EQ(caja.pintadas, antes) << "nothing drawn, nothing to repaint";
    caja.objeto()->Llama(u"Line"_s, {4, 0.0, 0.0, 600.0, 600.0});
    QApplication::processEvents();
    EXPECT_GT(caja.pintadas, antes);
}

// How the system printer uses Lienzo: the painter comes from outside, only
// when something is output, and its device may not know the resolution.
TEST(Lienzo, PideElPintorSoloParaDibujarYRespetaLaResolucionDada) {
    QImage hoja(850, 1100, QImage::Format_RGB32);  // its own dpi says nothing of 300
    hoja.fill(Qt::white);
    QPainter pintor(&hoja);
    int pedidos = 0;
    bool sinTrabajo = true;
    Lienzo l(hoja.size(), 300, 300, [&]() -> QPainter* {
        ++pedidos;
        return sinTrabajo ? nullptr : &pintor;
    });
    l.ScaleMode(5);
    l.FontSize(30);
    const double alto = l.TextHeight(u"H"_s);
    EXPECT_EQ(pedidos, 0) << "measuring needs no painter";
    l.CurrentY(1);
    l.Print(u"H"_s);
    EXPECT_EQ(pedidos, 1);
    EXPECT_NEAR(l.CurrentY(), 1 + alto, 1e-9) << "dropped output still moves the position";

    sinTrabajo = false;
    l.CurrentX(0.5);
    l.CurrentY(0.5);
    l.Print(u"H"_s);
    pintor.end();
    int primera = -1, ultima = -1;
    for (int y = 0; y < hoja.height(); ++y)
        for (int x = 0; x < hoja.width(); ++x)
            if (qGray(hoja.pixel(x, y)) < 128) {
                if (primera < 0) primera = y;
                ultima = y;
            }
    // A 30-point capital is about 0.3 inch tall: some 90 pixels at 300 dpi.
    EXPECT_GT(primera, 150);
    EXPECT_NEAR(ultima - primera, 0.3 * 300, 20);
}
