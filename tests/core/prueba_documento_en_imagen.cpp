// A whole document drawn on a real image preview, checked by its pixels.

#include <gtest/gtest.h>

#include <QColor>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "kaloimpresora/impresora.h"
#include "kaloimpresora/superficies.h"
#include "target/imagen.h"

using namespace kalo;
using namespace Qt::StringLiterals;

namespace {

constexpr int kPpp = 96;  // 8.5 x 11 inches at 96 dpi: page inches map 1:1

class DocumentoEnImagen : public ::testing::Test {
protected:
    void SetUp() override {
        vista = CreaSuperficieDeImagen(8.5 * kPpp, 11 * kPpp, kPpp);
        imp.Pantalla = true;
        imp.Imagen2 = vista;
        imp.IniciaDocumento();
    }
    QColor Pixel(double x, double y) {
        const auto imagen = std::dynamic_pointer_cast<Imagen>(vista->Lee(u"Image"_s).objeto());
        return imagen->imagen().pixelColor(qRound(x * kPpp), qRound(y * kPpp));
    }
    std::shared_ptr<Objeto> vista;
    Impresora imp;
};

TEST_F(DocumentoEnImagen, CajasLlenasEnSuColorYCajasEnElDeLaFuente) {
    imp.FilledBox(1, 1, 2, 1, 255);
    EXPECT_EQ(Pixel(2, 1.5), QColor(Qt::red));
    imp.ColorDeFuente(0xFF0000);  // blue, as 0x00BBGGRR
    imp.Box(4, 1, 2, 1);
    EXPECT_EQ(Pixel(5, 1), QColor(Qt::blue));
    EXPECT_EQ(Pixel(5, 1.5), QColor(Qt::white));
    imp.PaginaNueva();
    EXPECT_EQ(Pixel(2, 1.5), QColor(Qt::white));
}

TEST_F(DocumentoEnImagen, SayEscribeDondeSeLePide) {
    imp.EstableceFuente(u"DejaVu Sans"_s, 24);
    imp.Say(imp.Row(12), imp.Col(40), u"███"_s);
    // Row 12 = 2 in down, column 40 = 4.25 in across: the text starts there.
    EXPECT_LT(Pixel(4.35, 2.15).lightness(), 100);
    EXPECT_EQ(Pixel(4.1, 2.15), QColor(Qt::white));
    EXPECT_EQ(Pixel(4.35, 1.9), QColor(Qt::white));
}

TEST_F(DocumentoEnImagen, ImagenesEnLosFormatosComunes) {
    QTemporaryDir carpeta;
    QImage azul(16, 16, QImage::Format_RGB32);
    azul.fill(Qt::blue);
    int x = 0;
    // Qt reads GIF but does not write it: a one-pixel blue GIF by hand.
    const char gif[] = "GIF89a\x01\x00\x01\x00\x80\x00\x00\x00\x00\xff\x00\x00\x00"
                       "\x2c\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3b";
    for (const char* formato : {"bmp", "png", "jpg", "gif", "ico"}) {
        SCOPED_TRACE(formato);
        const QString archivo = carpeta.filePath(u"logo."_s + QString::fromLatin1(formato));
        if (qstrcmp(formato, "gif") == 0) {
            QFile f(archivo);
            ASSERT_TRUE(f.open(QIODevice::WriteOnly));
            f.write(gif, sizeof gif - 1);
        } else {
            ASSERT_TRUE(azul.save(archivo, formato));
        }
        imp.Picture(archivo, 0.5 + x, 5, 0.5, 0.5);
        const QColor c = Pixel(0.75 + x, 5.25);
        EXPECT_GT(c.blue(), 200);
        EXPECT_LT(c.red(), 60);
        ++x;
    }
}

}  // namespace
