#pragma once

#include "kaloimpresora/exporta.h"

#include <QString>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

// Parameter record of the data-range dialog: the host fills the input half
// (queries, legends, the Param/Fechas/Check switches) and reads the answers.
class KALO_EXPORT ParamData : public ConTabla<ParamData> {
public:
    // Answers.
    QString BusquedaIni;
    QString BusquedaFin;
    bool Todos1 = false;
    QString BusquedaIni2;
    QString BusquedaFin2;
    bool Todos2 = false;
    double FechaInicial = 0;  // days since 30 Dec 1899
    double FechaFinal = 0;
    bool TodasLasFechas = false;
    bool SoloSeleccionados = false;
    bool TodosLosRegistros = false;
    // Input.
    QString QueryIni;
    QString QueryFin;
    QString QueryIni2;
    QString QueryFin2;
    QString LeyendaIni;
    QString LeyendaFin;
    QString LeyendaIni2;
    QString LeyendaFin2;
    bool Param1 = false;
    bool Param2 = false;
    bool Fechas = false;
    bool Check = false;
    bool CheckValue = false;  // input and answer
    QString CheckLeyend;
    QString Observ;

    // A range is taken only when its start query is not blank; the flags only
    // ever switch on, so a later call with an empty query keeps the earlier
    // range. Note the order: query before legend for each field.
    void ParametrosRequeridos(const QString& pQueryIni = {}, const QString& pLeyendaIni = {},
                              const QString& pQueryFin = {}, const QString& pLeyendaFin = {},
                              const QString& pQueryIni2 = {}, const QString& pLeyendaIni2 = {},
                              const QString& pQueryFin2 = {}, const QString& pLeyendaFin2 = {},
                              bool pFechas = false, bool pCheck = false, bool pCheckValue = false,
                              const QString& pCheckLeyend = {});

    static const TablaDeMiembros& Tabla();
};

}  // namespace kalo
