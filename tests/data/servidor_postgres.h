#pragma once

// The private PostgreSQL server of the test run (servidor_postgres.sh): the
// one ctest started for the run, whose folder KALO_POSTGRES names, or, when
// the suite is run by hand, one started for this process and stopped with it.

#include <QString>

namespace kalo::prueba {

struct ServidorPostgres {
    QString carpeta;  // of the socket; empty when there is no server
    QString motivo;   // why there is none, to skip with
};

const ServidorPostgres& Postgres();

// A connection string for the run's database, as user "kalo".
QString CadenaPostgres(const QString& carpeta);

// Runs servidor_postgres.sh ORDEN BASE [más]; true when it ended well. Its
// output goes to salida, or nowhere.
bool ScriptPostgres(const QStringList& argumentos, QString* salida = nullptr);

}  // namespace kalo::prueba
