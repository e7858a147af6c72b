// Pictures in the common file formats, drawn by a document on a real image
// preview and checked by their pixels.

#include "comun/prueba.h"

#include <QColor>

namespace {

TEST(DocumentoEnImagen, ImagenesEnLosFormatosComunes) {
    // 8.5 x 11 inches at 96 dpi: page inches map 1:1.
    auto vista = CreaSuperficieDeImagen(8.5 * 96, 11 * 96, 96);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
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
        const QColor c = std::dynamic_pointer_cast<Imagen>(vista->Lee(u"Image"_s).objeto())
                             ->imagen()
                             .pixelColor(qRound((0.75 + x) * 96), qRound(5.25 * 96));
        EXPECT_GT(c.blue(), 200);
        EXPECT_LT(c.red(), 60);
        ++x;
    }
}

}  // namespace
