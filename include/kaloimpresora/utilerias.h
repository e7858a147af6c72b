#pragma once

#include "kaloimpresora/exporta.h"

// The host application's utility object. The component knows it only by the
// operations below; each comment is the contract the component relies on.
// One shared instance per thread, created on first use; hosts and tests may
// put their own in its place.

#include <QString>
#include <cstdint>
#include <memory>

#include "kaloimpresora/variant.h"

class QObject;

namespace kalo {

class KALO_EXPORT Utilerias {
public:
    virtual ~Utilerias() = default;

    // A plain decimal number with "." as the decimal point whatever the locale:
    // no grouping, no exponent, as many digits as the double needs (up to 15
    // significant), trailing zeros dropped; "2", "2.5", "-0.0001".
    virtual QString TextoDeNumero(double numero) = 0;
    // The value as text: a text is itself, a number its usual text form.
    virtual QString TextoDeValor(const Variant& valor) = 0;
    // True when the value counts as blank.
    virtual bool EsVacio(const Variant& valor) = 0;
    // The value as a number: for a flag 1 or -1 when true, 0 when false.
    virtual double ValorNumerico(const Variant& valor) = 0;

    // Pictures of barcodes (automation picture objects that PaintPicture
    // accepts): bars altoDeBarra high; the human-readable text with them when
    // incluyeHR is true. ImagenBar3de9 appends the modulo-43 check character
    // when checkSum is true. Data the symbology cannot encode is a failure.
    virtual std::shared_ptr<Objeto> ImagenBar128(int16_t& altoDeBarra, QString& barData, bool& incluyeHR) = 0;
    virtual std::shared_ptr<Objeto> ImagenBar3de9(int16_t& altoDeBarra, QString& barData, bool& checkSum,
                                                  bool& incluyeHR) = 0;
    virtual std::shared_ptr<Objeto> ImagenBarEAN13(int16_t& altoDeBarra, QString& barData, bool& incluyeHR) = 0;
    virtual std::shared_ptr<Objeto> ImagenBarEAN8(int16_t& altoDeBarra, QString& barData, bool& incluyeHR) = 0;

    // An amount in Spanish words: the amount, then leyenda, then the cents as
    // "nn/100" when decimales is true, then leyenda2.
    virtual QString ImporteEnLetra(double& numero, QString& leyenda, bool& decimales, QString& leyenda2) = 0;

    // Position (from 1) of the first occurrence of busca (as text) in texto;
    // below 1 when it does not occur.
    virtual int32_t BuscaTexto(const Variant& busca, const QString& texto) = 0;
    // The decimal point of the numbers that the runtime's text-to-number
    // conversion accepts (the user's decimal separator).
    virtual QString SeparadorDecimal() = 0;
    // Runs sql on the connection and returns the recordset.
    virtual std::shared_ptr<Objeto> AbreConsulta(const QString& sql, const std::shared_ptr<Objeto>& conexion,
                                                 bool opcion) = 0;

    // The date (days since 30 Dec 1899) that stands for a working period.
    virtual double FechaDePeriodo(const Variant& periodo1, const Variant& periodo2) = 0;
    // Called once when a dialog loads (texto empty) and once when it unloads
    // (texto "frmMaster").
    virtual void PreparaFormulario(QObject* formulario, const std::shared_ptr<Objeto>& ambiente,
                                   const QString& texto) = 0;
    virtual void CierraFormulario(QObject* formulario, const std::shared_ptr<Objeto>& ambiente,
                                  const QString& texto) = 0;
    // Sends keystrokes (key-string notation, e.g. "{TAB}") to the focused control.
    virtual void EnviaTeclas(const QString& teclas, bool espera) = 0;
    // Text of a numbered message of the host's message catalogue.
    virtual QString TextoDeMensaje(int32_t numero, const std::shared_ptr<Objeto>& ambiente) = 0;
};

// The component's own implementation, used unless the host supplies one.
// Barcode pictures come from libzint at 8 pixels per mm, altoDeBarra in
// pixels.
class KALO_EXPORT UtileriasPredeterminadas : public Utilerias {
public:
    QString TextoDeNumero(double numero) override;
    // Null, Empty and errors give "".
    QString TextoDeValor(const Variant& valor) override;
    // Empty, Null, an omitted argument, Nothing and text of only spaces are blank.
    bool EsVacio(const Variant& valor) override;
    // -1 for true; blank or non-numeric values give 0.
    double ValorNumerico(const Variant& valor) override;
    std::shared_ptr<Objeto> ImagenBar128(int16_t& altoDeBarra, QString& barData, bool& incluyeHR) override;
    std::shared_ptr<Objeto> ImagenBar3de9(int16_t& altoDeBarra, QString& barData, bool& checkSum,
                                          bool& incluyeHR) override;
    std::shared_ptr<Objeto> ImagenBarEAN13(int16_t& altoDeBarra, QString& barData, bool& incluyeHR) override;
    std::shared_ptr<Objeto> ImagenBarEAN8(int16_t& altoDeBarra, QString& barData, bool& incluyeHR) override;
    QString ImporteEnLetra(double& numero, QString& leyenda, bool& decimales, QString& leyenda2) override;
    // Case-sensitive; an empty search text is never found (it would make a
    // replace-all loop forever).
    int32_t BuscaTexto(const Variant& busca, const QString& texto) override;
    QString SeparadorDecimal() override;
    // On the component's connections (kaloimpresora/automatizacion.h,
    // "KaloImpresora.Conexion") and on any other connection object through
    // its Execute member; Nothing raises 91. Every recordset is forward-only
    // and read-only, so opcion selects nothing.
    std::shared_ptr<Objeto> AbreConsulta(const QString& sql, const std::shared_ptr<Objeto>& conexion,
                                         bool opcion) override;
    // periodo1 a year, periodo2 a month: the last day of that month. A
    // period that is no month of the years 100 to 9999 raises 5.
    double FechaDePeriodo(const Variant& periodo1, const Variant& periodo2) override;
    // Centres the window over the active window (or the screen).
    void PreparaFormulario(QObject* formulario, const std::shared_ptr<Objeto>& ambiente,
                           const QString& texto) override;
    // Does nothing.
    void CierraFormulario(QObject* formulario, const std::shared_ptr<Objeto>& ambiente,
                          const QString& texto) override;
    // To the widget with the focus: plain characters, {TAB}, {ENTER} or ~,
    // {ESC}, {BS}, {DEL}, arrows ({UP}...), {HOME}, {END}, {PGUP}, {PGDN},
    // {F1}-{F4}, a character in braces ({+}, {{}), and +, ^, % for Shift,
    // Ctrl and Alt on the next key. Without espera the keys are queued and
    // arrive when the event loop next runs. Notation that does not read raises 5.
    void EnviaTeclas(const QString& teclas, bool espera) override;
    // 823: the branch's database could not be opened; other numbers give a
    // text that names the number.
    QString TextoDeMensaje(int32_t numero, const std::shared_ptr<Objeto>& ambiente) override;
};

// The calling thread's shared instance, created on first use.
KALO_EXPORT Utilerias& UtileriasCompartidas();
// Puts another instance in place for the calling thread; nullptr brings back
// the component's own on next use.
KALO_EXPORT void SustituyeUtilerias(std::shared_ptr<Utilerias> utilerias);

}  // namespace kalo
