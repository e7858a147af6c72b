#pragma once

// One Code 39 symbol, framed and labelled, drawn bar by bar with nothing but
// the target's Line, Font, TextWidth, CurrentX/CurrentY and Print members, so
// that a printer, a picture box or any object offering them will do. Laid
// out for twips: the margins and text offsets below are twip values.
//
// Failures are reported in ErrNumber/ErrDescription; they are raised as
// ErrorDeAutomatizacion only while RaiseError is true.

#include <QString>
#include <cstdint>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

class clsBarCode39 {
public:
    // Draws the symbol on objTarget in its current scale. Leaves Barcode with
    // its start and stop stars added; leaves the target's font name and size
    // as they were but bold off.
    void Draw(const std::shared_ptr<Objeto>& objTarget);

    // Below 11 becomes 11, in the caller's variable too.
    Moneda NarrowX() const { return mcurNarrowX; }
    void NarrowX(Moneda& DimensionX);
    bool RaiseError() const { return mblnRaiseError; }
    void RaiseError(bool blnError) { mblnRaiseError = blnError; }
    int32_t ErrNumber() const { return mlngErrNumber; }
    const QString& ErrDescription() const { return mstrErrDescription; }
    const QString& Data3() const { return mstrData3; }
    void Data3(const QString& strValue) { mstrData3 = strValue; }
    const QString& Data2() const { return mstrData2; }
    void Data2(const QString& strValue) { mstrData2 = strValue; }
    const QString& Data1() const { return mstrData1; }
    void Data1(const QString& strValue) { mstrData1 = strValue; }
    // A text with any character outside the 44 is refused (5970) and the
    // previous barcode kept.
    const QString& Barcode() const { return mstrBarcode; }
    void Barcode(const QString& strValue);
    bool ShowBox() const { return mblnShowBox; }
    void ShowBox(bool blnSetBox) { mblnShowBox = blnSetBox; }
    int32_t CurrentX() const { return mlngX; }
    void CurrentX(int32_t lngX) { mlngX = lngX; }
    int32_t CurrentY() const { return mlngY; }
    void CurrentY(int32_t lngY) { mlngY = lngY; }
    // Below 300 becomes 300, in the caller's variable too.
    int16_t BarcodeHeight() const { return mintHeight; }
    void BarcodeHeight(int16_t& intHeight);
    // Frame size for the barcode as stored now: stars that Draw has yet to
    // add are not counted.
    int32_t TotalWidth() const;
    int32_t TotalHeight() const;
    // Modulo-43 check character of strCode, or of Barcode when strCode is
    // empty; stars are ignored.
    QString FindCheckDigit(const QString& strCode);

private:
    int16_t FindCode(int32_t intChar);
    static QString FindChar(int32_t intValue);
    static QString FindPattern(const QString& strChar);
    void FallaCaracter(const QString& origen);

    Moneda mcurNarrowX{150000};
    QString mstrBarcode = QStringLiteral("*12345*");
    QString mstrData1;
    QString mstrData2;
    QString mstrData3;
    bool mblnRaiseError = false;
    int32_t mlngErrNumber = 0;
    QString mstrErrDescription = QStringLiteral("No Error");
    bool mblnShowBox = true;
    int32_t mlngX = 0;
    int32_t mlngY = 0;
    int16_t mintHeight = 600;
};

}  // namespace kalo
