#include "kaloimpresora/paramdata.h"

#include "kaloimpresora/utilerias.h"

namespace kalo {

void ParamData::ParametrosRequeridos(const QString& pQueryIni, const QString& pLeyendaIni,
                                     const QString& pQueryFin, const QString& pLeyendaFin,
                                     const QString& pQueryIni2, const QString& pLeyendaIni2,
                                     const QString& pQueryFin2, const QString& pLeyendaFin2, bool pFechas,
                                     bool pCheck, bool pCheckValue, const QString& pCheckLeyend) {
    Utilerias& util = UtileriasCompartidas();
    if (!util.EsVacio(Variant(pQueryIni))) {
        Param1 = true;
        QueryIni = pQueryIni;
        QueryFin = pQueryFin;
        LeyendaIni = pLeyendaIni;
        LeyendaFin = pLeyendaFin;
    }
    if (!util.EsVacio(Variant(pQueryIni2))) {
        Param2 = true;
        QueryIni2 = pQueryIni2;
        QueryFin2 = pQueryFin2;
        LeyendaIni2 = pLeyendaIni2;
        LeyendaFin2 = pLeyendaFin2;
    }
    Check = pCheck;
    CheckValue = pCheckValue;
    CheckLeyend = pCheckLeyend;
    Fechas = pFechas;
}

}  // namespace kalo
