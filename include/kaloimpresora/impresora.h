#pragma once

#include <QString>
#include <cstdint>
#include <memory>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/paramdata.h"

namespace kalo {

// The object through which every document is printed or previewed. Public
// state is plain stored values, in the order of its automation interface.
class Impresora : public Objeto {
public:
    Impresora();

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

    int32_t IdDeNombre(const QString& nombre) const override;
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override;

private:
    int16_t escalaGuardadaImagen1_ = 0;  // ScaleMode of Imagen1 while a document is open
    double formaAlto_ = 0;
    double formaAncho_ = 0;
    int32_t controlhWnd_ = 0;
    QString estiloImpresion_;
};

}  // namespace kalo
