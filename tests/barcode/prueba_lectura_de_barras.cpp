// The barcodes the component draws, driven as a host drives it and read back
// by zbar on a preview surface. On paper they are read back in the print
// queue's tests (tests/cups).

#include <gtest/gtest.h>

#include <QImage>
#include <functional>

#include "comun/lectura_de_barras.h"
#include "comun/objeto_grabador.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/superficies.h"
#include "target/imagen.h"

namespace kalo {
namespace {

using namespace Qt::StringLiterals;
using namespace zbar;
using prueba::Lectura;
using prueba::Lee;

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
    // Narrow (twips), message, check digit, frame, and what zbar reads.
    const Variant omitido = Variant::Falta();
    const std::tuple<Variant, QString, Variant, bool, std::string> casos[] = {
        {20, u"12345"_s, omitido, false, "12345"},
        // zbar hands the check character back as data.
        {20, u"12345"_s, int16_t{1}, false, "12345F"},
        {20, u"12345"_s, u"1"_s, false, "12345F"},
        {20, u"12345"_s, true, false, "12345"},  // true is not the number 1
        {20, u"12345"_s, Variant::Nulo(), false, "12345"},
        {20, u"ABC-12"_s, omitido, false, "ABC-12"},
        {20, u"*ABC-12*"_s, omitido, false, "ABC-12"},
        {30, u"CODE 39"_s, int16_t{1}, false, "CODE 39R"},
        // The frame stands 150 twips off the bars: a full quiet zone of ten
        // narrows while the narrow is at most 15.
        {15, u"ABC-12"_s, int16_t{1}, true, "ABC-12T"},
        // Below the minimum: drawn at 11 twips.
        {int16_t{5}, u"ABC-12"_s, int16_t{1}, false, "ABC-12T"},
        {int16_t{5}, u"*ABC-12*"_s, omitido, true, "ABC-12"},
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
    // Method, data, the flags after the rectangle (readable text when omitted).
    const std::tuple<const char*, QString, std::vector<Variant>, Lectura> casos[] = {
        {"Bar128", u"0123456789"_s, {}, {ZBAR_CODE128, "0123456789"}},
        {"Bar128", u"LOTE\t42"_s, {}, {ZBAR_CODE128, "LOTE\t42"}},
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
    const QRectF rectangulos[] = {{0.5, 0.3, 5.0, 0.8}, {0.5, 0.3, 1.6, 1.4}};
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
}  // namespace kalo
