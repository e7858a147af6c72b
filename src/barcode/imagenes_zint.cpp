// zint's own raster output is used rather than its vectors: it lays out the
// human-readable text (EAN digits split around the guards, the leading one in
// the quiet zone) with a built-in bitmap font, so no system font can change
// the picture.

#include "barcode/imagenes_zint.h"

#include <zint.h>

#include <QByteArray>
#include <algorithm>
#include <memory>
#include <new>

#include "kaloimpresora/errores.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;

// At scale 1 zint rasterises a module as 2 pixels and takes heights in modules.
constexpr int kPixelesPorModulo = 2;
constexpr int kPuntosPorMetro = 8000;
constexpr double kPuntosPorPulgada = kPuntosPorMetro * 0.0254;
constexpr int kAltoMaximo = 2000 * kPixelesPorModulo;  // zint's limit, 2000 modules

QString Nombre(Simbologia simbologia) {
    switch (simbologia) {
    case Simbologia::Code128: return u"Code 128"_s;
    case Simbologia::Code39: return u"Code 39"_s;
    case Simbologia::EAN13: return u"EAN-13"_s;
    case Simbologia::EAN8: return u"EAN-8"_s;
    }
    return {};
}

[[noreturn]] void Rechaza(Simbologia simbologia, const QString& motivo) {
    throw ErrorDeAutomatizacion(err::kLlamadaNoValida,
                                u"Código de barras "_s + Nombre(simbologia) + u" no válido: "_s + motivo,
                                u"ImagenDeBarras"_s);
}

// zint pads short EAN input with zeros and takes up to 5 digits as an add-on
// symbol, so only the two lengths of the symbology itself get through.
int SimbologiaEAN(Simbologia simbologia, const QString& datos) {
    const qsizetype sinVerificador = simbologia == Simbologia::EAN13 ? 12 : 7;
    const bool soloDigitos =
        std::all_of(datos.begin(), datos.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!soloDigitos || (datos.size() != sinVerificador && datos.size() != sinVerificador + 1))
        Rechaza(simbologia, u"se esperan %1 o %2 dígitos"_s.arg(sinVerificador).arg(sinVerificador + 1));
    // The _CHK variant verifies the last digit instead of appending one.
    return datos.size() == sinVerificador ? BARCODE_EANX : BARCODE_EANX_CHK;
}

QImage ImagenMonocroma(const zint_symbol& simbolo) {
    const int ancho = simbolo.bitmap_width;
    QImage imagen(ancho, simbolo.bitmap_height, QImage::Format_Mono);
    imagen.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    imagen.setDotsPerMeterX(kPuntosPorMetro);
    imagen.setDotsPerMeterY(kPuntosPorMetro);
    imagen.fill(0);
    for (int y = 0; y < imagen.height(); ++y) {
        const unsigned char* rgb = simbolo.bitmap + 3 * static_cast<qsizetype>(y) * ancho;
        uchar* linea = imagen.scanLine(y);
        for (int x = 0; x < ancho; ++x)
            if (rgb[3 * x] < 128) linea[x >> 3] |= static_cast<uchar>(0x80 >> (x & 7));
    }
    return imagen;
}

}  // namespace

std::shared_ptr<Imagen> ImagenDeBarras(Simbologia simbologia, int16_t altoDeBarra, const QString& datos,
                                       bool checkSum, bool incluyeHR) {
    if (altoDeBarra < 1 || altoDeBarra > kAltoMaximo)
        Rechaza(simbologia, u"el alto de barra debe ir de 1 a %1 pixeles"_s.arg(kAltoMaximo));

    std::unique_ptr<zint_symbol, decltype(&ZBarcode_Delete)> simbolo(ZBarcode_Create(), &ZBarcode_Delete);
    if (!simbolo) throw std::bad_alloc();
    switch (simbologia) {
    case Simbologia::Code128:
        simbolo->symbology = BARCODE_CODE128;
        break;
    case Simbologia::Code39:
        // zint would encode lower case as upper case, and the symbol would not
        // read back as the data it was given.
        if (std::any_of(datos.begin(), datos.end(), [](QChar c) { return c >= u'a' && c <= u'z'; }))
            Rechaza(simbologia, u"no admite minúsculas"_s);
        simbolo->symbology = BARCODE_CODE39;
        simbolo->option_2 = checkSum ? 1 : 0;
        break;
    case Simbologia::EAN13:
    case Simbologia::EAN8:
        simbolo->symbology = SimbologiaEAN(simbologia, datos);
        break;
    }
    // Code 128 and Code 39 get their 10-module quiet zones only on request;
    // EAN has its own anyway.
    simbolo->output_options = BARCODE_QUIET_ZONES;
    simbolo->input_mode = UNICODE_MODE;
    simbolo->height = static_cast<float>(altoDeBarra) / kPixelesPorModulo;
    simbolo->show_hrt = incluyeHR ? 1 : 0;

    // Code 128 takes ISO 8859-1; zint converts from UTF-8 and refuses the rest.
    const QByteArray utf8 = datos.toUtf8();
    const int resultado = ZBarcode_Encode_and_Buffer(
        simbolo.get(), reinterpret_cast<const unsigned char*>(utf8.constData()), static_cast<int>(utf8.size()), 0);
    if (resultado >= ZINT_ERROR) Rechaza(simbologia, QString::fromUtf8(simbolo->errtxt));

    return std::make_shared<Imagen>(ImagenMonocroma(*simbolo), kPuntosPorPulgada);
}

}  // namespace kalo
