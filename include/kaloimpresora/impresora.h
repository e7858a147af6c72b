#pragma once

#include <QString>
#include <cstdint>
#include <memory>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/paramdata.h"

namespace kalo {

// The style of a new Impresora and of PaperSize when none is named; the
// printer's forms are named "Tiendanova_" + style.
inline constexpr char16_t kEstiloPredeterminado[] = u"Tiendanova";

// The object through which every document is printed or previewed. Public
// state is plain stored values, in the order of its automation interface.
class KALO_EXPORT Impresora : public ConTabla<Impresora> {
public:
    Impresora();
    static const TablaDeMiembros& Tabla();

    bool Pantalla = false;  // false: printer; true: preview in Imagen2
    std::shared_ptr<Objeto> Imagen1;
    std::shared_ptr<Objeto> Imagen2;
    std::shared_ptr<Objeto> Imagen3;
    int32_t Documento = 0;
    double nRow = 0;
    double nCol = 0;
    QString DB;
    int32_t Paginas = 0;
    int32_t nLinea = 0;
    bool Archivo = false;
    QString strTemp;
    int32_t nCopias = 0;
    bool bolCancelado = false;
    bool Cancelado = false;
    double FechaInicial = 0;  // days since 30 Dec 1899
    double FechaFinal = 0;
    bool Todos = false;
    bool SoloSeleccionados = false;
    std::shared_ptr<Objeto> Avance;
    int32_t PapelTipo = 0;
    double PapelAncho = 0;
    double PapelLargo = 0;
    bool bolStop = false;
    int16_t PaperOrientation = 0;
    bool Horizontal = false;
    QString BusquedaIni;
    QString BusquedaFin;
    std::shared_ptr<kalo::ParamData> ParamData;
    QString Observ;
    std::shared_ptr<Objeto> AmbienteSucursal;
    std::shared_ptr<Objeto> sq;
    std::shared_ptr<Objeto> recordSetOrigen;
    std::shared_ptr<Objeto> objetoReporte;

    // Property procedures.
    double FormaAncho() const { return formaAncho_; }
    void FormaAncho(double pulgadas) { formaAncho_ = pulgadas; }
    double FormaAlto() const { return formaAlto_; }
    void FormaAlto(double pulgadas) { formaAlto_ = pulgadas; }
    int32_t ControlhWndImpresora() const { return controlhWnd_; }
    // Ignores its argument and stores 0: the property always reads 0.
    void ControlhWndImpresora(int32_t& hwnForm);
    const QString& EstiloImpresion() const { return estiloImpresion_; }
    void EstiloImpresion(QString& estilo) { estiloImpresion_ = estilo; }

    // Document lifecycle.
    void IniciaDocumento();
    void PaginaNueva();
    void FinDocumento();
    // Printer copy count; does nothing while the output goes to the preview.
    void Copias(int32_t& nCopias);
    // Deletes the file (or the files, with wildcards) named by strTemp; never fails.
    void BorraArchivo();
    // Lets the user interface process its pending events once.
    void Eventos();
    // Creates a new spool file next to the library and makes it DB.
    void CreaBaseDeDatos();

    // Text and font state. Positions are inches on the logical page.
    // Prints strMensaje with its upper-left corner at (x, y): vertical first.
    void Say(const Variant& y, const Variant& x, const Variant& strMensaje);
    void CurrentY(const Variant& YVal);
    void CurrentX(const Variant& XVal);
    void EstableceFuente(const Variant& strFuente, const Variant& Size);
    void FontBold(const Variant& Bold);
    // Unlike FontBold, a failing target reaches the caller.
    void FontITalic(const Variant& Italic);
    // Always recorded as "FuenteTransparente False"; the target follows the flag.
    void FuenteTransparente(const Variant& bolTrans);
    void ColorDeFuente(const Variant& nColor);
    // Inches of a row or column of the nRow x nCol grid; nothing is drawn.
    Variant Row(const Variant& nRenglon);
    Variant Col(const Variant& nColumna);

    // Graphics, in inches on the logical page. Linea also sends the print
    // position to the left edge; PCircle's bLeft and bTop are its centre.
    void Linea(const Variant& bLeft0, const Variant& bTop0, const Variant& bLeft1, const Variant& bTop1);
    void Box(const Variant& bLeft, const Variant& bTop, const Variant& bWidth, const Variant& bHeight);
    void FilledBox(const Variant& bLeft, const Variant& bTop, const Variant& bWidth, const Variant& bHeight,
                   const Variant& Color);
    void PCircle(const Variant& bLeft, const Variant& bTop, const Variant& bRadius);
    // A picture file stretched into the rectangle; a missing file draws nothing.
    void Picture(const Variant& picSource, const Variant& pLeft, const Variant& pTop, const Variant& pWidth,
                 const Variant& pHeight);

    // Barcodes. Codigo39 works in twips and draws the symbol bar by bar; the
    // others paint a picture of the symbol from the utility object.
    void Codigo39(const Variant& x, const Variant& y, const Variant& xNarrow, const Variant& yHeight,
                  const Variant& strMensaje, const Variant& bolBox = false, const Variant& CheckDigit = false,
                  const Variant& strData1 = QString(), const Variant& strData2 = QString(),
                  const Variant& strData3 = QString());
    void Bar128(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                const Variant& pWidth, const Variant& pHeight, bool incluyeHR = true);
    void Bar3de9(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                 const Variant& pWidth, const Variant& pHeight, bool checkSum = false, bool incluyeHR = true);
    void BarEAN13(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                  const Variant& pWidth, const Variant& pHeight, bool incluyeHR = true);
    void BarEAN8(int16_t altoDeBarra, const QString& barData, const Variant& pLeft, const Variant& pTop,
                 const Variant& pWidth, const Variant& pHeight, bool incluyeHR = true);

    // Paper and orientation of the current printer. Portrait and LandScape
    // leave the printer alone while the output goes to the preview; LandScape
    // also turns the page and sets the grid to 40 x 130, which Portrait keeps.
    void Portrait();
    void LandScape();
    // A platform paper code, or 256 with nW x nH inches. The page size is left
    // in FormaAncho and FormaAlto, and the printer's form named after
    // strestilo takes it in whole inches. Only the recording can fail.
    void PaperSize(int16_t nTipo, double nW = 0, double nH = 0,
                   const QString& strestilo = QString::fromUtf16(kEstiloPredeterminado));
    // Puts back the sheet that the printer had before the latest PaperSize.
    void RestauraPapel();
    // Applies the form of EstiloImpresion to the current printer's sheet.
    void EstableceEstiloImpresoraNT();
    // Always Nothing.
    std::shared_ptr<Objeto> CreaForma();

    // Makes the print server's destination of that exact device name (the
    // argument without surrounding spaces; case counts) the current printer,
    // and applies the form of EstiloImpresion to the current printer, chosen
    // or not. Only the recording can fail.
    void EstableceImpresora(const Variant& strimpresora);
    // Writes cCode, then CR LF, to the port (a device or file path, LPT1,
    // COM1..., a print-server queue). Records nothing and never fails.
    void AbrirCajonDeDinero(const Variant& cPuerto, const Variant& cCode);

    // Text helpers.
    // strChr as text nVeces times (rounded, halves to even); Null adds nothing.
    QString Replicate(const Variant& strChr, const Variant& nVeces);
    // Both pad on the left to width nVeces: text comes out right-aligned.
    QString PadR(const Variant& str, const Variant& nVeces);
    QString PadL(const Variant& str, const Variant& nVeces);
    QString Block(const QString& cBlock);
    QString Quote(const QString& cBlock);
    QString Inserta(const QString& cInserta, const QString& cBusca, const QString& cTarget);
    // Replaces every occurrence, rewriting the caller's cTarget too. Never
    // ends when cInserta contains cBusca.
    QString Cambia(const QString& cInserta, const QString& cBusca, QString& cTarget);
    // Every "'" becomes a double quote, in the result and in cString.
    QString Prepara(QString& cString);
    // Line nLinea (from 1), lines ending at line feeds, carriage returns dropped.
    QString strLinea(const Variant& cString, const Variant& nLinea);
    int32_t CuantasLineas(const Variant& cString);
    // Reads a number written with "." as the decimal point, in any locale.
    double Fn(const QString& strValue);
    // The runtime's Format: Sunday first, the first week the one of 1 January.
    Variant Formato(const Variant& Var, const Variant& strFormat);
    // The recordset of strSql on Connection: the utility object's
    // AbreConsulta(strSql, Connection, True).
    std::shared_ptr<Objeto> rst(QString& strSql, std::shared_ptr<Objeto>& Connection);
    // The amount in Spanish words, from the utility object.
    QString Letra(const Variant& nNumero, const Variant& Leyenda, const Variant& Decimales,
                  const Variant& strLeyenda2 = QString());
    // The runtime's pseudo-random sequence: [0, 1), never reseeded here.
    double Random();
    int32_t RandomColor();

    // Parameter dialogs: modal, each call a fresh window; they return once it
    // is closed. A cancel sets Cancelado (never cleared here); the close box
    // writes nothing. Without a screen to show them on they raise 445.
    // Date range: FechaInicial, FechaFinal, Todos, SoloSeleccionados.
    void RangoDeFechas(const QString& cTitulo, const std::shared_ptr<Objeto>& Ambiente, bool SoloFechas = false);
    // Cut-off date: FechaInicial, Todos, SoloSeleccionados.
    void FechaDeCorte(const QString& cTitulo, const std::shared_ptr<Objeto>& Ambiente, bool SoloFechas = false);
    // Up to two data ranges, dates and an option, described by ParamData;
    // the answers come back in a new ParamData.
    void Rangos(const std::shared_ptr<Objeto>& Ambiente, bool UsarListView);
    // Kept in the interface; they do nothing.
    void RangoDeAlcance(const QString& cTitulo, const std::shared_ptr<Objeto>& Ambiente) {}
    Variant RangoDeDatos(const QString& cLeyendaIni, const QString& cBusquedaIni, const QString& cLeyendaFin,
                         const QString& cBusquedaFin, const std::shared_ptr<Objeto>& Ambiente,
                         const std::shared_ptr<Objeto>& ParentForm = {}) {
        return {};
    }
    Variant Seleccion(const QString& cLeyendaIni, const QString& cBusquedaIni,
                      const std::shared_ptr<Objeto>& Ambiente, const std::shared_ptr<Objeto>& ParentForm = {}) {
        return {};
    }

private:
    int16_t escalaGuardadaImagen1_ = 0;  // ScaleMode of Imagen1 while a document is open
    double formaAlto_ = 0;
    double formaAncho_ = 0;
    int32_t controlhWnd_ = 0;
    QString estiloImpresion_;
};

}  // namespace kalo
