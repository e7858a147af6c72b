#pragma once

// Code 39 drawn bar by bar on the document's current target, in twips.

#include "kaloimpresora/variant.h"

namespace kalo::modulo4 {

// Draws one symbol with a fresh clsBarCode39 on the printer or the preview
// target, switching it to twips and back to inches. A barcode with characters
// outside Code 39 is refused with a message box and nothing is drawn. Only
// the number 1 in CheckDigit appends the check character. Conversion failures
// and a target without ScaleMode reach the caller; drawing failures do not.
void DibujaCodigo39(const Variant& x, const Variant& y, const Variant& xNarrow, const Variant& yHeight,
                    const Variant& strMensaje, const Variant& bolBox, const Variant& CheckDigit,
                    const Variant& strData1, const Variant& strData2, const Variant& strData3);

}  // namespace kalo::modulo4
