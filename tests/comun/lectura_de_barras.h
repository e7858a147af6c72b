#pragma once

// Barcodes read back with libzbar, a decoder independent of every encoder
// under test: a symbol that merely looks right does not pass.

#include <zbar.h>

#include <QImage>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace kalo::prueba {

struct Lectura {
    zbar::zbar_symbol_type_t tipo;
    std::string datos;
    auto operator<=>(const Lectura&) const = default;
};

inline void PrintTo(const Lectura& l, std::ostream* os) {
    *os << zbar::zbar_get_symbol_name(l.tipo) << " \"" << l.datos << '"';
}

// Every symbol zbar finds in the picture, in the order it reports them.
inline std::vector<Lectura> Lee(const QImage& imagen) {
    using namespace zbar;
    const QImage gris = imagen.convertToFormat(QImage::Format_Grayscale8);
    std::string pixeles;
    for (int y = 0; y < gris.height(); ++y)
        pixeles.append(reinterpret_cast<const char*>(gris.constScanLine(y)), gris.width());
    std::unique_ptr<zbar_image_scanner_t, decltype(&zbar_image_scanner_destroy)> lector(
        zbar_image_scanner_create(), &zbar_image_scanner_destroy);
    std::unique_ptr<zbar_image_t, decltype(&zbar_image_destroy)> z(zbar_image_create(), &zbar_image_destroy);
    zbar_image_set_format(z.get(), zbar_fourcc('Y', '8', '0', '0'));
    zbar_image_set_size(z.get(), gris.width(), gris.height());
    zbar_image_set_data(z.get(), pixeles.data(), pixeles.size(), nullptr);
    zbar_scan_image(lector.get(), z.get());
    std::vector<Lectura> lecturas;
    for (auto* s = zbar_image_first_symbol(z.get()); s; s = zbar_symbol_next(s))
        lecturas.push_back({zbar_symbol_get_type(s),
                            std::string(zbar_symbol_get_data(s), zbar_symbol_get_data_length(s))});
    return lecturas;
}

}  // namespace kalo::prueba
