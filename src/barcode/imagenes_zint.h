#pragma once

// Barcode pictures for the utility object's ImagenBar* operations, drawn by
// libzint.

#include <QString>
#include <cstdint>
#include <memory>

#include "target/imagen.h"

namespace kalo {

enum class Simbologia { Code128, Code39, EAN13, EAN8 };

// The picture is a 1-bit bitmap at 8 pixels per millimetre (203.2 dpi, a
// receipt printer's dots) with modules of 2 pixels (0.25 mm), quiet zones
// included. altoDeBarra is the bar height in pixels of that picture (80 gives
// bars 10 mm high), from 1 to 4000; EAN guard bars descend 10 pixels further.
// The human-readable text goes below the bars when incluyeHR is true.
// EAN data is 12 or 7 digits (the check digit is added) or 13 or 8 (the check
// digit is verified). checkSum appends the Code 39 modulo-43 check character.
// Data the symbology cannot encode, empty data included, raises 5.
std::shared_ptr<Imagen> ImagenDeBarras(Simbologia simbologia, int16_t altoDeBarra, const QString& datos,
                                       bool checkSum, bool incluyeHR);

}  // namespace kalo
